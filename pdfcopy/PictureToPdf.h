// A PDF of a picture, made by the print system's own filter.
#pragma once

namespace velka {

/// Runs imagetopdf of the print system (folder filter in CUPS_SERVERBIN) with this
/// job's arguments on the picture that `picture` holds from its start, and lets it
/// write to `pdf`. Tells the scheduler and returns false when it cannot be run or
/// fails.
[[nodiscard]] bool makePdfOfPicture(char* const argv[], int picture, int pdf);

}  // namespace velka
