// expect: 'to_chars' is unavailable
// Floating-point std::to_chars came with macOS 13.3.
#include <charconv>

int main() {
  char text[32];
  const auto end = std::to_chars(text, text + sizeof text, 2.5);
  return static_cast<int>(end.ptr - text);
}
