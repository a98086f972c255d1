#pragma once
// How commands report the range and the mean of an image's samples.

#include <vector>

#include "calls/Report.h"
#include "files/SampleStatistics.h"

// Prints a heading and a line for each channel; nothing when there are none.
void printStatistics(const std::vector<SampleStatistics>& channels);

// [{"channel", "minimum", "maximum", "mean", "finite", "nan", "infinite"}]; the first three are null
// without finite samples.
Json jsonOf(const std::vector<SampleStatistics>& channels);
