#pragma once
// Pieces of HTML.

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

// Escapes a text for use between tags and in attributes.
std::string escaped(std::string_view text);

std::string base64(std::span<const std::uint8_t> bytes);

// Formats a number with that many decimals.
std::string fixed(double number, int decimals);

// Formats a number with thousands separated: 2,497,014.
std::string grouped(std::uint64_t number);

// "1 tile", "19 tiles".
std::string counted(std::size_t count, const char* noun);
