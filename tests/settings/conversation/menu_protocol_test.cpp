// SPDX-License-Identifier: MIT
#include "settings/conversation/menu_protocol.hpp"

#include <gtest/gtest.h>

#include <string>

namespace vantora {
namespace {

using namespace MenuProtocol;

MenuContent content() {
  return {{{1, "Configurações…"}, {2, "Pausar"}}, {850, 14}, {780, -3, 150, 26}, true};
}

TEST(MenuProtocol, BringsTheMenuToTheOtherEnd) {
  const std::string line = menuLine(content());
  ASSERT_TRUE(line.ends_with('\n'));
  EXPECT_EQ(line.find('\n'), line.size() - 1);
  EXPECT_EQ(readMenuLine(line), content());
}

TEST(MenuProtocol, IgnoresMembersThatItDoesNotKnow) {
  EXPECT_EQ(readMenuLine(R"({"type":"menu","entries":[{"id":1,"label":"Sair","icon":"x"}],)"
                         R"("pointer":{"x":1,"y":2},"item":{"x":0,"y":0,"width":3,"height":4},)"
                         R"("isDark":false,"colour":"red"})"),
            (MenuContent{{{1, "Sair"}}, {1, 2}, {0, 0, 3, 4}, false}));
}

TEST(MenuProtocol, RepairsTextThatIsNotUtf8) {
  MenuContent broken = content();
  broken.entries[1].label = "Pau\xFFsar";
  const auto read = readMenuLine(menuLine(broken));
  ASSERT_TRUE(read);
  EXPECT_EQ(read->entries[1].label, "Pau\xEF\xBF\xBDsar");
}

class RefusedMenu : public testing::TestWithParam<const char*> {};

TEST_P(RefusedMenu, IsNoMenu) {
  EXPECT_FALSE(readMenuLine(GetParam())) << GetParam();
}

#define PLACES R"("pointer":{"x":1,"y":2},"item":{"x":0,"y":0,"width":3,"height":4})"
#define ENTRIES R"("entries":[{"id":1,"label":"Sair"}])"
INSTANTIATE_TEST_SUITE_P(
    MenuProtocol, RefusedMenu,
    testing::Values(
        "", "null", "[]", "garbage", R"({"type":"menu"})",
        R"({"type":"raise",)" ENTRIES "," PLACES R"(,"isDark":false})",
        "{" ENTRIES "," PLACES R"(,"isDark":false})",
        R"({"type":"menu","entries":[],)" PLACES R"(,"isDark":false})",
        R"({"type":"menu","entries":{},)" PLACES R"(,"isDark":false})",
        R"({"type":"menu","entries":[7],)" PLACES R"(,"isDark":false})",
        R"({"type":"menu","entries":[{"id":1}],)" PLACES R"(,"isDark":false})",
        R"({"type":"menu","entries":[{"label":"Sair"}],)" PLACES R"(,"isDark":false})",
        R"({"type":"menu","entries":[{"id":1,"label":""}],)" PLACES R"(,"isDark":false})",
        R"({"type":"menu","entries":[{"id":1.5,"label":"Sair"}],)" PLACES R"(,"isDark":false})",
        R"({"type":"menu","entries":[{"id":2147483648,"label":"a"}],)" PLACES R"(,"isDark":false})",
        R"({"type":"menu","entries":[{"id":1,"label":"a"},{"id":1,"label":"b"}],)" PLACES
        R"(,"isDark":false})",
        R"({"type":"menu",)" ENTRIES R"(,"pointer":{"x":1},"item":{"x":0,"y":0,"width":3,)"
        R"("height":4},"isDark":false})",
        R"({"type":"menu",)" ENTRIES R"(,"pointer":{"x":32768,"y":0},"item":{"x":0,"y":0,)"
        R"("width":3,"height":4},"isDark":false})",
        R"({"type":"menu",)" ENTRIES R"(,"pointer":{"x":1,"y":2},"item":{"x":0,"y":0,)"
        R"("width":-1,"height":4},"isDark":false})",
        R"({"type":"menu",)" ENTRIES "," PLACES R"(,"isDark":"yes"})",
        R"({"type":"menu",)" ENTRIES "," PLACES "}"));
#undef PLACES
#undef ENTRIES

TEST(MenuProtocol, BoundsTheEntriesAndTheirLabels) {
  MenuContent large = content();
  large.entries.clear();
  for (std::size_t index = 0; index < maxEntries; ++index) {
    large.entries.push_back({static_cast<std::int32_t>(index), std::string(maxLabelBytes, 'x')});
  }
  const std::string line = menuLine(large);
  EXPECT_EQ(readMenuLine(line), large);
  EXPECT_LT(line.size(), menuReadLimit);
  MenuContent more = large;
  more.entries.push_back({99, "x"});
  EXPECT_FALSE(readMenuLine(menuLine(more)));
  large.entries[0].label += 'x';
  EXPECT_FALSE(readMenuLine(menuLine(large)));
}

TEST(MenuProtocol, BringsTheToolTipToTheOtherEnd) {
  const ToolTipContent toolTip{"CPU: 12%\nRede: \"0,1M\"", {850, 14}, true};
  const std::string line = toolTipLine(toolTip);
  EXPECT_EQ(line.find('\n'), line.size() - 1);
  EXPECT_EQ(readToolTipLine(line), toolTip);
  EXPECT_FALSE(readMenuLine(line));
  EXPECT_FALSE(readToolTipLine(menuLine(content())));
}

TEST(MenuProtocol, CutsALongToolTipBetweenTwoCharacters) {
  ToolTipContent toolTip{std::string(maxToolTipBytes, 'x'), {1, 2}, false};
  EXPECT_EQ(readToolTipLine(toolTipLine(toolTip)), toolTip) << "just as long as it may be";
  for (std::size_t shift = 0; shift < 3; ++shift) {
    std::string text(shift, 'x');
    while (text.size() <= maxToolTipBytes) {
      text += "€";
    }
    toolTip.text = text;
    const std::string line = toolTipLine(toolTip);
    EXPECT_LT(line.size(), menuReadLimit);
    const auto read = readToolTipLine(line);
    ASSERT_TRUE(read);
    ASSERT_TRUE(read->text.ends_with("…"));
    const std::string kept = read->text.substr(0, read->text.size() - 3);
    EXPECT_TRUE(text.starts_with(kept));
    EXPECT_EQ((kept.size() - shift) % 3, 0U);
    EXPECT_GT(read->text.size(), maxToolTipBytes - 4);
  }
}

TEST(MenuProtocol, RefusesWhatIsNoToolTip) {
  for (const char* line : {"", "garbage", "[]", R"({"type":"toolTip"})",
                           R"({"type":"toolTip","text":"","pointer":{"x":1,"y":2},"isDark":true})",
                           R"({"type":"toolTip","text":7,"pointer":{"x":1,"y":2},"isDark":true})",
                           R"({"type":"toolTip","text":"a","pointer":{"x":1},"isDark":true})",
                           R"({"type":"toolTip","text":"a","pointer":{"x":1,"y":2}})",
                           R"({"text":"a","pointer":{"x":1,"y":2},"isDark":true})"}) {
    EXPECT_FALSE(readToolTipLine(line)) << line;
  }
}

TEST(MenuProtocol, BringsTheAnswersBack) {
  EXPECT_EQ(readAnswerLine(answerLine(Shown{})), MenuAnswer(Shown{}));
  EXPECT_EQ(readAnswerLine(answerLine(Chosen{-7})), MenuAnswer(Chosen{-7}));
  EXPECT_TRUE(answerLine(Chosen{1}).ends_with('\n'));
}

TEST(MenuProtocol, RefusesWhatIsNoAnswer) {
  for (const char* line :
       {"", "garbage", "null", "[]", "{}", R"({"type":7})", R"({"type":"hidden"})",
        R"({"type":"chosen"})", R"({"type":"chosen","id":null})", R"({"type":"chosen","id":"1"})",
        R"({"type":"chosen","id":1.5})", R"({"type":"chosen","id":-2147483649})"}) {
    EXPECT_FALSE(readAnswerLine(line)) << line;
  }
}

}  // namespace
}  // namespace vantora
