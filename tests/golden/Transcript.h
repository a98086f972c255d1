#pragma once
// A transcript: a text of one line for each case, which starts with the name of what the case calls
// and the case's number.

#include <string>
#include <vector>

using Lines = std::vector<std::string>;

// Returns the lines of a file, without empty ones and those that start with '#'. Throws if there is no
// such file.
Lines readLines(const std::string& path);

// For each name in a transcript, in order, "NAME COUNT DIGEST": how many cases it has and the digest of
// their lines.
Lines digestsOf(const Lines& transcript);

// Prints which lines of two transcripts, or of two lists of digests, differ, and returns how many. Lines
// that start with the same two words belong together.
std::size_t reportDifferences(const Lines& have, const Lines& want);

// Whether the digests of a transcript are those of a file; prints the ones that differ.
bool agreesWithDigests(const std::string& transcript, const std::string& digests);
