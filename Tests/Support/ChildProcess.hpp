#pragma once

#include <functional>
#include <string>
#include <vector>

namespace kestrom::tests {

struct EndedProcess {
  /// As of waitpid(2).
  int status = 0;
  /// What it printed, without line ends.
  std::vector<std::string> lines;

  /// It ended by itself and said that all is well.
  bool isGood() const;
  bool wasKilled() const;
};

/// Runs a program to its end. `atLine` sees each line that it prints, while it goes on.
EndedProcess runProcess(std::vector<std::string> command, const std::function<void(const std::string&)>& atLine = {});

}  // namespace kestrom::tests
