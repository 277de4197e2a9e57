// What a log must not show: passwords, and the digits of PIN commands. The one place that knows how to hide
// them.
#pragma once
#include <string>
#include <string_view>
#include <vector>

// What was said on a modem's line, as it may be logged: in each line with a PIN command, also an echo and
// among other commands, every digit is "*".
std::string MaskPin(std::string_view text);

// The passwords of one object.
class Secrets {
  public:
    // Stands for a password, whatever its length.
    static constexpr std::string_view kMask = "****";

    // Replaces the list; empty passwords count for nothing.
    void Set(std::vector<std::string> passwords);

    // What a field that holds a password shows: the mask when it is one of the list.
    std::string Shown(const std::string& password) const;

    // Puts the mask over every password of the list in a text, from an offset on: as it is, percent-encoded,
    // or in base64. Passwords of less than four characters stand in too many words: only Shown hides them.
    void Mask(std::string& text, std::size_t from = 0) const;

  private:
    std::size_t LengthAt(std::string_view text) const;

    std::vector<std::string> passwords_;
    std::vector<std::string> encoded_;  // the longer ones in base64
};
