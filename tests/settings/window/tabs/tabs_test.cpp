// SPDX-License-Identifier: MIT
//
// Every control outside of the module rows: a change reaches the configuration, an outside
// change reaches the control; and every text of the tabs.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAccessible>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QSpinBox>
#include <QTabWidget>
#include <functional>
#include <utility>
#include <vector>

#include "model/words.hpp"
#include "settings/window/tabs/tabs_fixture.hpp"

namespace vantora {
namespace {

using namespace SettingsProtocol;
using test::appearanceTab;
using test::claude;
using test::claudeTab;
using test::codex;
using test::codexTab;
using test::generalTab;
using test::modulesTab;
using test::samplingTab;
using test::Tab;

using TabsTest = test::TabsFixture;

using C = AppConfiguration;
using Change = std::function<void(C&)>;

struct Number {
  Tab tab;
  const char* name;
  int value;
  Change change;
  Limits limits;
};
struct Switch {
  Tab tab;
  const char* name;
  Change change;  // What switching it on does.
};
struct Choice {
  Tab tab;
  const char* name;
  QStringList texts;
  int index;
  Change change;
};

const std::vector<Number> numbers = {
    {appearanceTab, "Espaço entre módulos", 7, [](C& c) { c.gap = 7; }, {0, 24}},
    {appearanceTab, "Margem horizontal", 16, [](C& c) { c.horizontalPadding = 16; }, {0, 16}},
    {appearanceTab, "Margem vertical", 2, [](C& c) { c.verticalPadding = 2; }, {0, 10}},
    {appearanceTab, "Espaço entre linhas", 8, [](C& c) { c.lineGap = 8; }, {0, 8}},
};
const std::vector<Switch> switches = {
    {codexTab, "Ativar integração Codex", [](C& c) { codex(c).enabled = true; }},
    {codexTab, "Mostrar percentual utilizado em L1", [](C& c) { codex(c).showUsed = true; }},
    {codexTab, "Uma casa decimal", [](C& c) { codex(c).oneDecimal = true; }},
    {codexTab, "Mostrar data de renovação em L2", [](C& c) { codex(c).showResetDate = true; }},
    {claudeTab, "Ativar integração Claude", [](C& c) { claude(c).enabled = true; }},
    {claudeTab, "Mostrar percentual utilizado", [](C& c) { claude(c).showUsed = true; }},
    {claudeTab, "Uma casa decimal", [](C& c) { claude(c).oneDecimal = true; }},
    {generalTab, "Pausar coleta", [](C& c) { c.paused = true; }},
};
const QStringList minutes = {"1 minuto", "3 minutos", "5 minutos", "10 minutos"};
const std::vector<Choice> choices = {
    {samplingTab,
     "Intervalo de CPU e rede",
     {"1 segundo", "2 segundos"},
     0,
     [](C& c) { c.intervalSeconds = 1; }},
    {codexTab, "Consulta automática", minutes, 3, [](C& c) { codex(c).intervalMinutes = 10; }},
    {claudeTab, "Consulta automática", minutes, 2, [](C& c) { claude(c).intervalMinutes = 5; }},
};

TEST_F(TabsTest, StandInTheirOrder) {
  const auto* tabs = view_->findChild<QTabWidget*>();
  QStringList titles;
  for (int index = 0; index < tabs->count(); ++index) {
    titles << tabs->tabText(index).remove(QLatin1Char('&'));
  }
  EXPECT_EQ(titles,
            (QStringList{"Módulos", "Aparência", "Coleta", "Codex semanal", "Claude", "Geral"}));
  EXPECT_EQ(view_->windowTitle(), QString::fromUtf8("Configurações do Vantora"));
  EXPECT_EQ(view_->size(), QSize(640, 520));
}

TEST_F(TabsTest, SendEveryNumber) {
  for (const Number& number : numbers) {
    auto* spin = control<QSpinBox>(number.tab, QString::fromUtf8(number.name));
    EXPECT_EQ(spin->minimum(), number.limits.least);
    EXPECT_EQ(spin->maximum(), number.limits.most);
    C wanted = agent_.configuration;
    number.change(wanted);
    spin->setValue(number.value);
    EXPECT_EQ(sentConfiguration(), wanted) << number.name;
  }
}

TEST_F(TabsTest, ShowEveryNumber) {
  for (const Number& number : numbers) {
    number.change(agent_.configuration);
    tellAll();
    EXPECT_EQ(control<QSpinBox>(number.tab, QString::fromUtf8(number.name))->value(), number.value);
  }
  EXPECT_TRUE(sent().empty());
}

TEST_F(TabsTest, ShowAFractionAsAWholeNumberAndKeepIt) {
  agent_.configuration.gap = 7.6;
  tellAll();
  EXPECT_EQ(control<QSpinBox>(appearanceTab, QStringLiteral("Espaço entre módulos"))->value(), 8);
  EXPECT_TRUE(sent().empty());
  EXPECT_EQ(model_->state().configuration.gap, 7.6);
}

TEST_F(TabsTest, ShowAConfigurationOutOfBoundsWithoutChangingIt) {
  agent_.configuration.gap = 400;
  agent_.configuration.intervalSeconds = 9;
  agent_.configuration.modules[0].width = -3;
  tellAll();
  EXPECT_TRUE(sent().empty());
  EXPECT_EQ(model_->state().configuration, agent_.configuration);
}

TEST_F(TabsTest, SendAndShowEverySwitch) {
  for (const Switch& item : switches) {
    auto* box = control<QCheckBox>(item.tab, QString::fromUtf8(item.name));
    EXPECT_FALSE(box->isChecked());
    const C off = agent_.configuration;
    C wanted = off;
    item.change(wanted);
    box->click();
    EXPECT_EQ(sentConfiguration(), wanted) << item.name;
    agent_.configuration = off;
    tellAll();
    EXPECT_FALSE(box->isChecked()) << item.name;
    agent_.configuration = wanted;
    tellAll();
    EXPECT_TRUE(box->isChecked()) << item.name;
  }
  EXPECT_TRUE(sent().empty());
}

TEST_F(TabsTest, SendAndShowEveryChoice) {
  for (const Choice& item : choices) {
    auto* picker = control<QComboBox>(item.tab, QString::fromUtf8(item.name));
    QStringList texts;
    for (int index = 0; index < picker->count(); ++index) {
      texts << picker->itemText(index);
    }
    EXPECT_EQ(texts, item.texts);
    const C before = agent_.configuration;
    const int shown = picker->currentIndex();
    C wanted = before;
    item.change(wanted);
    picker->setCurrentIndex(item.index);
    EXPECT_EQ(sentConfiguration(), wanted) << item.name;
    agent_.configuration = before;
    tellAll();
    EXPECT_EQ(picker->currentIndex(), shown);
    agent_.configuration = wanted;
    tellAll();
    EXPECT_EQ(picker->currentIndex(), item.index);
  }
  EXPECT_TRUE(sent().empty());
}

TEST_F(TabsTest, NameTheInterfaceWhoseRatesAreShown) {
  agent_.networkName = "enp2s0";
  tellAll();
  EXPECT_TRUE(texts(samplingTab)
                  .contains(QStringLiteral(
                      "Automático escolhe uma interface física ativa; tráfego de túnel VPN não é "
                      "somado. Interface atual: enp2s0\n")));
}

TEST_F(TabsTest, PassTheButtonsOn) {
  C& configuration = agent_.configuration;
  codex(configuration).enabled = true;
  claude(configuration).enabled = true;
  configuration.modules[0].top = MetricID::codexWeeklyPercent;
  configuration.modules[1].top = MetricID::claudeWeeklyPercent;
  agent_.codex.needsLogin = true;
  tellAll();
  click(codexTab, "Atualizar agora");
  EXPECT_EQ(sentOne<Intent>(), Intent::refreshCodex);
  click(codexTab, "Conectar pelo navegador");
  EXPECT_EQ(sentOne<Intent>(), Intent::connectCodex);
  click(claudeTab, "Atualizar agora");
  EXPECT_EQ(sentOne<Intent>(), Intent::refreshClaude);
  click(codexTab, "Selecionar executável codex…");
  panels_.choose("/usr/bin/codex");
  EXPECT_EQ(sentOne<PathRequest>()->intent, PathIntent::selectCodexExecutable);
  click(generalTab, "Exportar JSON…");
  panels_.choose("/tmp/a.json");
  EXPECT_EQ(sentOne<PathRequest>()->intent, PathIntent::exportJSON);
  click(generalTab, "Importar JSON…");
  panels_.cancel();
  EXPECT_TRUE(sent().empty());
}

TEST_F(TabsTest, SayWhatTheirNotesSay) {
  const std::pair<int, QStringList> wanted[] = {
      {modulesTab, {"Ordem, conteúdo e largura do bloco\n", "Arraste os módulos para ordenar.\n"}},
      {appearanceTab,
       {"A largura fixa reserva espaço para o maior texto previsto da métrica; se necessário, a "
        "largura efetiva cresce para evitar corte.\n",
        "Prévia com leituras ativas; — significa indisponível ou aguardando amostra.\n"}},
      {samplingTab,
       {"Rede sempre em MB/s decimais, com M menor e sem setas: 125M ou 0,75M. Abaixo de 1 MB/s "
        "mostra duas casas decimais; valores menores que 0,005 MB/s arredondam para 0,00M. 1 Gbps "
        "equivale teoricamente a 125 MB/s.\nA cada intervalo selecionado, mede a média dos bytes "
        "transferidos desde a leitura anterior, usando o tempo real decorrido. Não executa teste "
        "de velocidade. A primeira leitura e a troca de interface mostram —.\n" +
        qtText(Words::batteryNote) + "\n" + qtText(Words::sensorNote) +
        "\nPotência de entrada e potência de carga ainda aguardam validação com carregador "
        "conectado; não são substituídas pela potência nominal do adaptador.\n"}},
      {codexTab,
       {"Requer também um módulo Codex ativo na lista. Usa somente a cota semanal informada pelo "
        "App Server oficial; não executa tarefas de IA.\n",
        "Conectar usa o navegador oficial. A sessão existente é verificada antes; desativar não "
        "faz logout.\nO CLI pode compartilhar a sessão com outros clientes Codex. Conclua o login "
        "com a conta esperada.\n"}},
      {claudeTab,
       {"Requer também um módulo Claude ativo na lista. L1 mostra a cota semanal e L2 a janela de "
        "5 horas, as mesmas do /usage do Claude Code.\n",
        qtText(Words::claudeQueryNote) + "\n" + qtText(Words::claudeLoginNote) + "\n"}},
      {generalTab,
       {"Leituras indisponíveis são mostradas como —. Nenhuma métrica usa valores simulados no "
        "aplicativo.\n"}}};
  for (const auto& [tab, notes] : wanted) {
    for (const QString& note : notes) {
      EXPECT_TRUE(texts(tab).contains(note)) << note.toStdString();
    }
  }
}

TEST_F(TabsTest, GiveEveryControlANameOfItsOwnAndAPlaceInTheTabOrder) {
  for (int tab = modulesTab; tab <= generalTab; ++tab) {
    view_->setCurrentTab(tab);
    QApplication::processEvents();
    QStringList names;
    for (auto* widget : page(tab)->findChildren<QWidget*>()) {
      const bool isPicker = qobject_cast<QComboBox*>(widget) != nullptr;
      const bool isControl = isPicker || qobject_cast<QAbstractButton*>(widget) != nullptr ||
                             qobject_cast<QSpinBox*>(widget) != nullptr ||
                             (qobject_cast<QLineEdit*>(widget) != nullptr &&
                              qobject_cast<QSpinBox*>(widget->parentWidget()) == nullptr);
      if (isControl && widget->isVisibleTo(page(tab))) {
        const auto* spoken = QAccessible::queryAccessibleInterface(widget);
        ASSERT_NE(spoken, nullptr);
        const QString name = spoken->text(isPicker ? QAccessible::Description : QAccessible::Name);
        EXPECT_FALSE(name.isEmpty());
        EXPECT_NE(widget->focusPolicy() & Qt::TabFocus, 0) << name.toStdString();
        EXPECT_FALSE(names.contains(name)) << name.toStdString();
        EXPECT_EQ(name, widget->accessibleName());
        if (tab == modulesTab && !name.startsWith(QStringLiteral("Adicionar "))) {
          EXPECT_TRUE(name.contains(QStringLiteral(", módulo "))) << name.toStdString();
        }
        names << name;
      }
    }
    EXPECT_FALSE(names.isEmpty());
  }
}

TEST_F(TabsTest, GiveNoAcceleratorTwiceWithinATabAndTheTabBar) {
  const auto letters = [](const QString& text) {
    const auto at = text.indexOf(QLatin1Char('&'));
    return at >= 0 ? QString(text[at + 1].toLower()) : QString();
  };
  const auto* tabs = view_->findChild<QTabWidget*>();
  for (int tab = modulesTab; tab <= generalTab; ++tab) {
    QStringList seen;
    const auto note = [&](const QString& text) {
      const QString letter = letters(text);
      EXPECT_FALSE(!letter.isEmpty() && seen.contains(letter)) << text.toStdString();
      seen << letter;
    };
    for (int index = 0; index < tabs->count(); ++index) {
      EXPECT_FALSE(letters(tabs->tabText(index)).isEmpty());
      note(tabs->tabText(index));
    }
    // One row stands for all: the same letter goes from row to row.
    const auto* firstRow = tab == modulesTab ? rows().front() : nullptr;
    const auto isInAnotherRow = [&](const QWidget* widget) {
      for (const QWidget* at = widget; at != nullptr; at = at->parentWidget()) {
        if (dynamic_cast<const ModuleRow*>(at) != nullptr) {
          return at != firstRow;
        }
      }
      return false;
    };
    for (const auto* button : page(tab)->findChildren<QAbstractButton*>()) {
      if (!isInAnotherRow(button)) {
        note(button->text());
      }
    }
    for (const auto* label : page(tab)->findChildren<QLabel*>()) {
      if (label->buddy() != nullptr && !isInAnotherRow(label)) {
        note(label->text());
      }
    }
  }
}

}  // namespace
}  // namespace vantora
