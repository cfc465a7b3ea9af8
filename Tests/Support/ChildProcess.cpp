#include "Tests/Support/ChildProcess.hpp"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <stdexcept>
#include <utility>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace kestrom::tests {

bool EndedProcess::isGood() const {
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

bool EndedProcess::wasKilled() const {
  return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
}

EndedProcess runProcess(std::vector<std::string> command, const std::function<void(const std::string&)>& atLine) {
  std::vector<char*> raw;
  for (std::string& argument : command) raw.push_back(argument.data());
  raw.push_back(nullptr);

  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe to " + command[0]);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
  pid_t process = 0;
  const int code = posix_spawn(&process, raw[0], &actions, nullptr, raw.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  close(ends[1]);
  std::FILE* output = fdopen(ends[0], "r");
  if (code != 0 || !output) throw std::runtime_error("cannot run " + command[0]);

  EndedProcess ended;
  std::string line;
  for (int letter = std::fgetc(output); letter != EOF; letter = std::fgetc(output)) {
    if (letter != '\n') {
      line += static_cast<char>(letter);
      continue;
    }
    if (atLine) atLine(line);
    ended.lines.push_back(std::exchange(line, ""));
  }
  std::fclose(output);
  while (waitpid(process, &ended.status, 0) < 0 && errno == EINTR) {
  }
  return ended;
}

}  // namespace kestrom::tests
