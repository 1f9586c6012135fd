// SPDX-License-Identifier: MIT
//
// What the tabs of the quota integrations have in common. Each hands in what is its own and
// puts the pieces into its order.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "settings/window/quota/quota_actions.hpp"
#include "settings/window/quota/quota_lines.hpp"
#include "settings/window/tabs/settings_tab.hpp"

namespace vantora {

template <typename Settings>
class QuotaTab : public SettingsTab {
 public:
  void refresh(WindowFields fields) override {
    if (fields.contains(WindowField::configuration)) {
      form_.load(settings());
      missing_->refresh(state().configuration);
      setReason(query_, whyNotQueried());
    }
    if (fields.contains(own_.field)) {
      lines_.show(state().*own_.summary);
    }
  }

 protected:
  struct Own {
    MetricFamily family;
    WindowField field;
    QuotaSummary WindowState::*summary;
    std::optional<Settings> AppConfiguration::*settings;
    void (WindowModel::*addModule)();
    void (WindowModel::*query)();
    std::string program;  ///< Before the path of its executable.
    std::string_view addLabel;
  };

  QuotaTab(WindowModel& model, Own own)
      : SettingsTab(model),
        own_(std::move(own)),
        form_(settingsEdit()),
        lines_(own_.program),
        missing_(new MissingModule(own_.family, own_.addLabel,
                                   [this] { (this->model().*own_.addModule)(); })),
        query_(
            Controls::makeButton("&Atualizar agora", [this] { (this->model().*own_.query)(); })) {}

  /// The settings in force, and how a form edits them: a change stores them whole.
  [[nodiscard]] Settings settings() const {
    return (state().configuration.*own_.settings).value_or(Settings{});
  }
  [[nodiscard]] typename Form<Settings>::Edit settingsEdit() const {
    return [edit = configurationEdit(),
            member = own_.settings](const std::function<void(Settings&)>& change) {
      edit([&](AppConfiguration& configuration) {
        Settings next = (configuration.*member).value_or(Settings{});
        change(next);
        configuration.*member = std::move(next);
      });
    };
  }

  /// The column of the tab with its switch, what that takes, and the state.
  [[nodiscard]] QVBoxLayout* begin(std::string_view enabledLabel, std::string_view note) {
    QVBoxLayout* column = Controls::makeScrollingColumn(this);
    column->addWidget(form_.add(memberSwitch<&Settings::enabled>(enabledLabel)));
    column->addWidget(Controls::makeNote(note));
    column->addWidget(missing_);
    Controls::addGroupGap(column);
    lines_.addState(*column);
    return column;
  }

  /// `rows` with the interval between queries, and the switches of every quota's texts.
  void addForm(QVBoxLayout* column, QFormLayout* rows, std::string_view showUsedLabel) {
    constexpr std::string_view label = "Consulta automát&ica";
    const ChoiceField<Settings> interval{
        label,
        {{"1 minuto", 1}, {"3 minutos", 3}, {"5 minutos", 5}, {"10 minutos", 10}},
        &Access<&Settings::intervalMinutes>::getChoice,
        &Access<&Settings::intervalMinutes>::setChoice};
    Controls::addRow(rows, label, form_.add(interval));
    column->addLayout(rows);
    column->addWidget(form_.add(memberSwitch<&Settings::showUsed>(showUsedLabel)));
    column->addWidget(form_.add(memberSwitch<&Settings::oneDecimal>("Uma casa &decimal")));
  }

  template <auto Member>
  [[nodiscard]] static SwitchField<Settings> memberSwitch(std::string_view label) {
    return {label, &Access<Member>::get, &Access<Member>::set};
  }

  [[nodiscard]] std::string_view whyNotQueried() const {
    return vantora::whyNotQueried(state().configuration, own_.family, settings().enabled);
  }
  [[nodiscard]] Form<Settings>& form() { return form_; }
  [[nodiscard]] const QuotaLines& lines() const { return lines_; }
  [[nodiscard]] QPushButton* queryButton() const { return query_; }

 private:
  Own own_;
  Form<Settings> form_;
  QuotaLines lines_;
  MissingModule* missing_;
  QPushButton* query_;
};

}  // namespace vantora
