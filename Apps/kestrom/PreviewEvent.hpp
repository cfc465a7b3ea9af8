#pragma once

#include <cstdint>
#include <string>

namespace kestrom::app {

/// One line, or bubble, of what a preview shows. Texts are those of the template and of the user, as they are: whoever
/// prints them makes them harmless for the terminal.
struct PreviewEvent {
  enum class Kind : std::uint8_t {
    bot,         ///< a bubble of the bot
    user,        ///< a bubble of the user
    option,      ///< a numbered choice of the pending question
    doneOption,  ///< the same, its arm already walked
    prompt,      ///< what is asked for
    notice,      ///< the preview's own word, an answer to a command
    refusal,     ///< why a line was not taken; nothing has changed
    finished,    ///< the conversation is finished; its state
    stuck,       ///< the conversation is unfinished and asks for nothing that could be answered; why
  };

  Kind kind;
  std::string text;

  friend bool operator==(const PreviewEvent&, const PreviewEvent&) = default;
};

}  // namespace kestrom::app
