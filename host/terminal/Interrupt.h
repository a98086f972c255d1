#pragma once
// Ctrl-C while files are being made: the work stops between two steps, so that what is unfinished
// can be deleted. A second Ctrl-C ends the program at once.

struct Interrupted {};
inline constexpr const char* kInterruptedSentence = "interrupted";

// From here on Ctrl-C is only noted, unless whoever started the program had it ignored.
void noteInterrupts();

// Throws Interrupted once Ctrl-C was noted. To be called only where all that was made is known and
// will be deleted.
void stopIfInterrupted();
