// Result codes: 32-bit numbers, 0 for success, numbered by area. What gives one must not be overlooked.
#pragma once
#include <cstdint>

class [[nodiscard]] ResultCode {
  public:
    constexpr ResultCode() = default;  // success
    constexpr explicit ResultCode(std::int32_t number) : number_(number) {}

    // As callers see it in LastError.
    constexpr std::int32_t Number() const { return number_; }

    friend constexpr bool operator==(ResultCode, ResultCode) = default;
    friend constexpr bool operator==(ResultCode code, std::int32_t number) { return code.number_ == number; }
    template <class Stream>
    friend Stream& operator<<(Stream& out, ResultCode code) {
        out << code.number_;
        return out;
    }

  private:
    std::int32_t number_ = 0;
};

// The named result codes, for example `result::NoMoreMessages` (33060).
namespace result {
#define RESULT(code, name, text) inline constexpr ResultCode name{code};
#define CODE(code, name) inline constexpr ResultCode name{code};
#include "foundation/ErrorTexts.inc"
}  // namespace result
