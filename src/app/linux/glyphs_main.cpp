// SPDX-License-Identifier: MIT
//
// vantora-glyphs: draws characters for the agent, which starts it whenever it needs some.
#include <cstdio>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/linux/fonts/font_arguments.hpp"
#include "platform/linux/fonts/font_description.hpp"
#include "platform/linux/fonts/fontconfig_lookup.hpp"
#include "platform/linux/fonts/freetype_glyphs.hpp"
#include "platform/linux/text/font_report.hpp"
#include "platform/linux/text/glyph_message.hpp"

namespace vantora {
namespace {

std::optional<std::string> reply(const std::vector<std::string>& arguments) {
  const std::optional<GlyphOrder> order = parseGlyphOrder(arguments);
  if (!order) {
    return std::nullopt;
  }
  const std::optional<FontSelection> fonts =
      order->fonts.empty() ? lookUpFonts() : parseFonts(order->fonts);
  if (!fonts) {
    return std::nullopt;
  }
  FreetypeGlyphs glyphs(*fonts);
  std::optional<GlyphAnswer> answer = glyphs.draw(order->request);
  if (!answer) {
    return std::nullopt;
  }
  return encode({toArguments(*fonts), std::move(*answer)});
}

}  // namespace
}  // namespace vantora

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  const auto bytes = arguments == std::vector<std::string>{vantora::describeFontsOption}
                         ? vantora::encode(vantora::describeFonts())
                         : vantora::reply(arguments);
  if (!bytes) {
    std::fputs("vantora-glyphs: é iniciado pelo Vantora para desenhar os caracteres\n", stderr);
    return 2;
  }
  const bool isWritten = std::fwrite(bytes->data(), 1, bytes->size(), stdout) == bytes->size();
  return isWritten && std::fflush(stdout) == 0 ? 0 : 1;
}
