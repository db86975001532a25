#ifndef QRA_LIBQRA_AGENT_SOURCE_LOCAL_SOURCE_QRA_MCF_CONVERT_H
#define QRA_LIBQRA_AGENT_SOURCE_LOCAL_SOURCE_QRA_MCF_CONVERT_H

#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory>
#include <type_traits>
#include <variant>

/// Where a value goes, with the type that was asked for; a text is malloc'ed, and the receiver frees it.
using mcf_out = std::variant<int*, bool*, unsigned long long*, long*, double*, char**>;
/// A value to be written, as it was given.
using mcf_in = std::variant<int, long, const char*>;

struct MallocFree {
    void operator()(void* pBlock) const { std::free(pBlock); }
};
/// A text that the platform gave away.
using CMallocText = std::unique_ptr<char, MallocFree>;

/// A number as the nearest one that To can hold; a bool is 0 or 1, and true is whatever is not 0.
template <class To, class From>
To ClampNumber(From value) {
    static_assert(std::is_arithmetic_v<To> && std::is_arithmetic_v<From>);
    using Limits = std::numeric_limits<To>;
    if constexpr (std::is_same_v<To, bool>) {
        return value != 0;
    } else if constexpr (std::is_floating_point_v<To>) {
        return static_cast<To>(value);
    } else if constexpr (std::is_floating_point_v<From>) {
        if (!(value > static_cast<From>(Limits::min()))) {
            return value <= static_cast<From>(Limits::min()) ? Limits::min() : To(0);
        }
        return value >= static_cast<From>(Limits::max()) ? Limits::max() : static_cast<To>(value);
    } else {
        if constexpr (std::is_signed_v<From>) {
            if (value < 0) {
                constexpr intmax_t nMin = static_cast<intmax_t>(Limits::min());
                return static_cast<intmax_t>(value) < nMin ? Limits::min() : static_cast<To>(value);
            }
        }
        constexpr uintmax_t nMax = static_cast<uintmax_t>(Limits::max());
        return static_cast<uintmax_t>(value) > nMax ? Limits::max() : static_cast<To>(value);
    }
}

/// True if a text was asked for.
inline bool WantsText(const mcf_out& out) {
    return std::holds_alternative<char**>(out);
}

/// Writes a number as the type that was asked for; false, and nothing written, if that is a text.
template <class Number>
bool StoreNumber(const mcf_out& out, Number value) {
    return std::visit(
        [value](auto pOut) {
            using To = std::remove_pointer_t<decltype(pOut)>;
            if constexpr (std::is_same_v<To, char*>) {
                return false;
            } else {
                *pOut = ClampNumber<To>(value);
                return true;
            }
        },
        out);
}

/// Hands a text over; false, and nothing written, if a number was asked for.
inline bool StoreText(const mcf_out& out, CMallocText text) {
    char** const* const pppText = std::get_if<char**>(&out);
    if (pppText == nullptr) {
        return false;
    }
    **pppText = text.release();
    return true;
}

#endif
