#include "page/Html.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

std::string escaped(std::string_view text) {
    constexpr std::pair<char, std::string_view> kEntities[] = {
        {'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'"', "&quot;"}};
    std::string html;
    for (const char c : text) {
        const auto* const entity =
            std::ranges::find(kEntities, c, &std::pair<char, std::string_view>::first);
        if (entity == std::end(kEntities))
            html += c;
        else
            html += entity->second;
    }
    return html;
}

std::string base64(std::span<const std::uint8_t> bytes) {
    constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const std::size_t left = bytes.size() - i;
        const std::uint32_t group = std::uint32_t{bytes[i]} << 16 |
                                    (left > 1 ? std::uint32_t{bytes[i + 1]} << 8 : 0) |
                                    (left > 2 ? std::uint32_t{bytes[i + 2]} : 0);
        text += kDigits[group >> 18];
        text += kDigits[group >> 12 & 63];
        text += left > 1 ? kDigits[group >> 6 & 63] : '=';
        text += left > 2 ? kDigits[group & 63] : '=';
    }
    return text;
}

std::string fixed(double number, int decimals) {
    std::array<char, 64> digits{};
    std::snprintf(digits.data(), digits.size(), "%.*f", decimals, number);
    return digits.data();
}

std::string grouped(std::uint64_t number) {
    std::string digits = std::to_string(number);
    for (std::size_t i = digits.size(); i > 3;) {
        i -= 3;
        digits.insert(i, 1, ',');
    }
    return digits;
}

std::string counted(std::size_t count, const char* noun) {
    return grouped(count) + ' ' + noun + (count == 1 ? "" : "s");
}
