#pragma once
// Text for the terminal and for Markdown.

#include <string>
#include <vector>

// printf into a string of at most 255 bytes.
[[gnu::format(printf, 1, 2)]] std::string text(const char* format, ...);

using TableRow = std::vector<std::string>;

// A Markdown table, the first row its head, padded so that it also reads well as plain text.
std::string aligned(const std::vector<TableRow>& rows);
