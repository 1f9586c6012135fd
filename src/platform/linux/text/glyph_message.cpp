// SPDX-License-Identifier: MIT
#include "platform/linux/text/glyph_message.hpp"

#include <charconv>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace vantora {
namespace {

constexpr std::string_view interfaceWord = "interface";
constexpr std::string_view monospacedWord = "monospaced";
constexpr std::size_t fixedArguments = 3;

// A damaged font must not make a picture larger than any panel is high.
constexpr std::int32_t maxSide = 4096;

template <typename Number>
void put(std::string& bytes, Number number) {
  static_assert(std::is_arithmetic_v<Number>);
  bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
}

void putCount(std::string& bytes, std::size_t count) {
  put(bytes, static_cast<std::uint32_t>(count));
}

/// Takes values off the front. After the first that is not there, nothing is.
class Reader {
 public:
  explicit Reader(std::string_view bytes) : rest_(bytes) {}

  template <typename Number>
  Number number() {
    Number value{};
    if (const std::string_view bytes = take(sizeof value); !bytes.empty()) {
      std::memcpy(&value, bytes.data(), sizeof value);
    }
    return value;
  }
  /// How many entries follow, each of at least `minBytes`.
  std::size_t count(std::size_t minBytes) {
    const auto count = number<std::uint32_t>();
    isSound_ = isSound_ && count <= rest_.size() / minBytes;
    return isSound_ ? count : 0;
  }
  std::string_view take(std::size_t length) {
    isSound_ = isSound_ && length <= rest_.size();
    if (!isSound_) {
      return {};
    }
    const std::string_view taken = rest_.substr(0, length);
    rest_.remove_prefix(length);
    return taken;
  }
  void require(bool isTrue) { isSound_ = isSound_ && isTrue; }
  [[nodiscard]] bool isSound() const { return isSound_; }
  [[nodiscard]] bool isAtEnd() const { return rest_.empty(); }

 private:
  std::string_view rest_;
  bool isSound_ = true;
};

void put(std::string& bytes, const GlyphImage& image) {
  for (const int value : {image.left, image.top, image.ink.width, image.ink.height}) {
    put(bytes, std::int32_t{value});
  }
  bytes.append(image.ink.pixels.begin(), image.ink.pixels.end());
}

GlyphImage takeImage(Reader& reader) {
  GlyphImage image;
  image.left = reader.number<std::int32_t>();
  image.top = reader.number<std::int32_t>();
  const auto width = reader.number<std::int32_t>();
  const auto height = reader.number<std::int32_t>();
  const auto isBounded = [](std::int32_t value, std::int32_t min) {
    return value >= min && value <= maxSide;
  };
  reader.require(isBounded(width, 0) && isBounded(height, 0) && isBounded(image.left, -maxSide) &&
                 isBounded(image.top, -maxSide));
  if (!reader.isSound()) {
    return image;
  }
  const std::string_view pixels =
      reader.take(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
  if (reader.isSound()) {
    image.ink = AlphaBitmap(width, height);
    image.ink.pixels.assign(pixels.begin(), pixels.end());
  }
  return image;
}

DrawnCharacter takeCharacter(Reader& reader) {
  constexpr std::size_t bytesOfEmptyImage = 4 * sizeof(std::int32_t);
  DrawnCharacter drawn;
  drawn.character = reader.number<std::uint32_t>();
  drawn.advance = reader.number<float>();
  const std::size_t images = reader.count(bytesOfEmptyImage);
  reader.require(images == 0 || images == glyphPhases);
  for (std::size_t index = 0; index < images && reader.isSound(); ++index) {
    drawn.images.push_back(takeImage(reader));
  }
  return drawn;
}

}  // namespace

std::vector<std::string> toArguments(const GlyphOrder& order) {
  const GlyphRequest& request = order.request;
  std::string characters;
  for (const char32_t character : request.characters) {
    characters += (characters.empty() ? "" : ",") + std::to_string(std::uint32_t{character});
  }
  std::vector<std::string> arguments{
      std::string(request.isMonospaced ? monospacedWord : interfaceWord),
      std::to_string(request.size), std::move(characters)};
  arguments.insert(arguments.end(), order.fonts.begin(), order.fonts.end());
  return arguments;
}

std::optional<GlyphOrder> parseGlyphOrder(std::span<const std::string> arguments) {
  if (arguments.size() < fixedArguments ||
      (arguments[0] != interfaceWord && arguments[0] != monospacedWord)) {
    return std::nullopt;
  }
  constexpr std::int32_t pixelSteps = 64;
  GlyphOrder order;
  order.request.isMonospaced = arguments[0] == monospacedWord;
  const auto takeNumber = [](std::string_view& text, auto& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return error == std::errc();
  };
  std::string_view size = arguments[1];
  if (!takeNumber(size, order.request.size) || !size.empty() || order.request.size < 0 ||
      order.request.size > maxSide * pixelSteps) {
    return std::nullopt;
  }
  for (std::string_view rest = arguments[2]; !rest.empty();) {
    std::uint32_t character = 0;
    if (!takeNumber(rest, character) || (!rest.empty() && rest.front() != ',')) {
      return std::nullopt;
    }
    order.request.characters += static_cast<char32_t>(character);
    rest.remove_prefix(rest.empty() ? 0 : 1);
  }
  order.fonts.assign(arguments.begin() + fixedArguments, arguments.end());
  return order;
}

std::string encode(const GlyphReply& reply) {
  std::string bytes;
  putCount(bytes, reply.fonts.size());
  for (const std::string& argument : reply.fonts) {
    putCount(bytes, argument.size());
    bytes += argument;
  }
  put(bytes, reply.answer.digitHeight);
  putCount(bytes, reply.answer.characters.size());
  for (const DrawnCharacter& drawn : reply.answer.characters) {
    put(bytes, static_cast<std::uint32_t>(drawn.character));
    put(bytes, drawn.advance);
    putCount(bytes, drawn.images.size());
    for (const GlyphImage& image : drawn.images) {
      put(bytes, image);
    }
  }
  return bytes;
}

std::optional<GlyphReply> parseGlyphReply(std::string_view bytes) {
  constexpr std::size_t bytesOfEmptyCharacter = 3 * sizeof(std::uint32_t);
  Reader reader(bytes);
  GlyphReply reply;
  const std::size_t fonts = reader.count(sizeof(std::uint32_t));
  for (std::size_t index = 0; index < fonts && reader.isSound(); ++index) {
    reply.fonts.emplace_back(reader.take(reader.count(1)));
  }
  reply.answer.digitHeight = reader.number<double>();
  const std::size_t characters = reader.count(bytesOfEmptyCharacter);
  for (std::size_t index = 0; index < characters && reader.isSound(); ++index) {
    reply.answer.characters.push_back(takeCharacter(reader));
  }
  if (!reader.isSound() || !reader.isAtEnd()) {
    return std::nullopt;
  }
  return reply;
}

}  // namespace vantora
