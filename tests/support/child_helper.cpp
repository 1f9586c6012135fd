// SPDX-License-Identifier: MIT
//
// The child of the tests that need a real one: child_helper SCENARIO [ARGUMENT...].
// "after-lines N SCENARIO ..." reads N lines of its input first, so that the parent's
// requests are never lost. Every scenario that waits ends by itself when its parent is gone, or
// after a minute, so that a failed test leaves nothing behind.
#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace {

using Arguments = std::vector<std::string>;

void say(std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = write(STDOUT_FILENO, text.data(), text.size());
    if (count <= 0) {
      _exit(1);
    }
    text.remove_prefix(static_cast<std::size_t>(count));
  }
}

// The child's own child.
bool isForked() {
  if (fork() != 0) {
    return false;
  }
  prctl(PR_SET_PDEATHSIG, 0);
  alarm(60);
  return true;
}

[[noreturn]] void waitForEver() {
  while (true) {
    pause();
  }
}

void readLines(int count) {
  char byte = 0;
  while (count > 0 && read(STDIN_FILENO, &byte, 1) == 1) {
    count -= byte == '\n' ? 1 : 0;
  }
}

void awaitInput() {
  pollfd input{STDIN_FILENO, POLLIN, 0};
  while (poll(&input, 1, -1) < 0) {
  }
}

int echo(const Arguments&) {
  char bytes[4096];
  ssize_t count = 0;
  while ((count = read(STDIN_FILENO, bytes, sizeof bytes)) > 0) {
    say({bytes, static_cast<std::size_t>(count)});
  }
  return 0;
}

// Answers each line that arrives with the next argument (empty: nothing), then goes on
// reading until its input ends.
int answer(const Arguments& arguments) {
  std::size_t next = 0;
  char byte = 0;
  while (read(STDIN_FILENO, &byte, 1) == 1) {
    if (byte == '\n' && next < arguments.size()) {
      const std::string& line = arguments[next++];
      if (!line.empty()) {
        say(line + "\n");
      }
    }
  }
  return 0;
}

// As answer, but ends right after the last answer.
int answerAndExit(const Arguments& arguments) {
  std::size_t next = 0;
  char byte = 0;
  while (next < arguments.size() && read(STDIN_FILENO, &byte, 1) == 1) {
    if (byte == '\n') {
      say(arguments[next].empty() ? "" : arguments[next] + "\n");
      ++next;
    }
  }
  return 0;
}

int exitWith(const Arguments& arguments) {
  say("bye");
  return std::atoi(arguments.at(0).c_str());
}

int die(const Arguments&) {
  kill(getpid(), SIGUSR1);
  waitForEver();
}

int complain(const Arguments& arguments) {
  for (const std::string& text : arguments) {
    std::fputs((text + "\n").c_str(), stderr);
  }
  return 1;
}

// Four megabytes of errors, then the lines that it is given, or "done".
int hugeError(const Arguments& arguments) {
  const std::string chunk(65'536, 'e');
  for (int count = 0; count < 64; ++count) {
    std::fwrite(chunk.data(), 1, chunk.size(), stderr);
  }
  for (const std::string& line : arguments) {
    say(line + "\n");
  }
  say(arguments.empty() ? "done\n" : "");
  waitForEver();
}

int flood(const Arguments&) {
  const std::string chunk(65'536, 'x');
  while (true) {
    say(chunk);
  }
}

int closeInput(const Arguments&) {
  close(STDIN_FILENO);
  say("closed\n");
  waitForEver();
}

// Closes its input once there is more of it.
int closeUnreadInput(const Arguments& arguments) {
  awaitInput();
  return closeInput(arguments);
}

// Closes its input before it answers the first line.
int answerAndCloseInput(const Arguments& arguments) {
  readLines(1);
  close(STDIN_FILENO);
  say(arguments.at(0) + "\n");
  waitForEver();
}

// The same with a second line that is there and never read.
int answerAndCloseUnreadInput(const Arguments& arguments) {
  readLines(1);
  awaitInput();
  close(STDIN_FILENO);
  say(arguments.at(0) + "\n");
  waitForEver();
}

int closeOutput(const Arguments&) {
  close(STDOUT_FILENO);
  waitForEver();
}

int hang(const Arguments&) {
  say("ready\n");
  waitForEver();
}

int silent(const Arguments&) {
  waitForEver();
}

int ignoreTermination(const Arguments&) {
  std::signal(SIGTERM, SIG_IGN);
  say("ready\n");
  waitForEver();
}

// A script that started the program proper and went away: the program holds the pipes.
int leaveAGrandchild(const Arguments& arguments) {
  if (isForked()) {
    if (!arguments.empty()) {
      std::signal(SIGTERM, SIG_IGN);
    }
    say(std::to_string(getpid()) + "\n");
    waitForEver();
  }
  char byte = 0;
  // With an argument the parent waits for a byte, so that the grandchild is ready.
  if (!arguments.empty()) {
    (void)!read(STDIN_FILENO, &byte, 1);
  }
  return 0;
}

// As above, without a word: the grandchild leaves its number in a file.
int leaveAQuietGrandchild(const Arguments& arguments) {
  int ready[2];
  if (pipe(ready) != 0) {
    return 1;
  }
  if (isForked()) {
    std::FILE* file = std::fopen(arguments.at(0).c_str(), "w");
    std::fprintf(file, "%d\n", static_cast<int>(getpid()));
    std::fclose(file);
    (void)!write(ready[1], "r", 1);
    waitForEver();
  }
  char byte = 0;
  (void)!read(ready[0], &byte, 1);
  return 0;
}

// The same, but the script stays: it and the program are to end together. With an argument
// the program ignores termination, and the script does not.
int wrap(const Arguments& arguments) {
  if (isForked()) {
    if (!arguments.empty()) {
      std::signal(SIGTERM, SIG_IGN);
    }
    say(std::to_string(getpid()) + "\n");
  }
  waitForEver();
}

// What the child got from its parent.
int report(const Arguments& arguments) {
  char folder[4096] = "";
  (void)!getcwd(folder, sizeof folder);
  std::string text = "folder=" + std::string(folder) + "\n";
  for (const std::string& name : arguments) {
    const char* value = std::getenv(name.c_str());
    text += name + "=" + (value != nullptr ? value : "(none)") + "\n";
  }
  text += "leads=" + std::to_string(getpgrp() == getpid() && getsid(0) == getpid() ? 1 : 0) + "\n";
  text += "slack=" + std::to_string(prctl(PR_GET_TIMERSLACK, 0, 0, 0, 0)) + "\n";
  constexpr int looked = 64;
  int open = 0;
  for (int fd = 3; fd < looked; ++fd) {
    open += fcntl(fd, F_GETFD) != -1 ? 1 : 0;
  }
  text += "extra=" + std::to_string(open) + "\n";
  struct sigaction handling {};
  sigaction(SIGPIPE, nullptr, &handling);
  text += "pipe=" + std::string(handling.sa_handler == SIG_DFL ? "default" : "changed") + "\n";
  say(text);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  const std::map<std::string, int (*)(const Arguments&)> scenarios{
      {"echo", echo},
      {"answer", answer},
      {"answer-and-close-input", answerAndCloseInput},
      {"answer-and-close-unread-input", answerAndCloseUnreadInput},
      {"answer-and-exit", answerAndExit},
      {"exit", exitWith},
      {"die", die},
      {"complain", complain},
      {"huge-error", hugeError},
      {"flood", flood},
      {"close-input", closeInput},
      {"close-unread-input", closeUnreadInput},
      {"close-output", closeOutput},
      {"hang", hang},
      {"silent", silent},
      {"ignore-termination", ignoreTermination},
      {"leave-a-grandchild", leaveAGrandchild},
      {"leave-a-quiet-grandchild", leaveAQuietGrandchild},
      {"wrap", wrap},
      {"report", report},
  };
  std::vector<std::string> words(argv + 1, argv + argc);
  if (words.size() > 2 && words[0] == "after-lines") {
    readLines(std::atoi(words[1].c_str()));
    words.erase(words.begin(), words.begin() + 2);
  }
  const auto scenario = !words.empty() ? scenarios.find(words[0]) : scenarios.end();
  if (scenario == scenarios.end()) {
    std::fputs("child_helper: no such scenario\n", stderr);
    return 64;
  }
  return scenario->second(Arguments(words.begin() + 1, words.end()));
}
