// SPDX-License-Identifier: MIT
#include "app/program_answer.hpp"

#include <cerrno>
#include <cstdio>

#include "settings/error_text.hpp"

namespace vantora {

int give(const char* program, const ProgramAnswer& answer) {
  std::fputs(answer.text.c_str(), answer.status == 0 ? stdout : stderr);
  if (std::fflush(stdout) != 0) {
    complainOfOutput(program, errno);
    return 1;
  }
  return answer.status;
}

void complainOfOutput(const char* program, int error) {
  std::fprintf(stderr, "%s: não foi possível escrever: %s\n", program,
               systemErrorText(error).c_str());
}

}  // namespace vantora
