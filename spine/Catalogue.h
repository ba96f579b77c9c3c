#pragma once
// Names of vertebrae and discs per region, head to foot.

#include <map>
#include <string>
#include <vector>

namespace vertana {

/// Vertebrae of each region (-1, 0, 1, 2); an extra vertebra is appended to its region's list. Region -1 holds one
/// empty name. Atlas and axis count as one vertebra, "C1-C2".
std::map<long, std::vector<std::string>> catalogueOfVertebrae(bool additionalVertebra);

/// Discs of each region with the junction discs at both ends; with an extra vertebra the last disc is replaced by two.
/// There is no "C1-C2" disc. Neighbouring regions are named independently of each other.
std::map<long, std::vector<std::string>> catalogueOfDiscs(bool additionalVertebra);

/// What lies above each region's first disc, with or without an extra vertebra.
std::map<long, std::string> catalogueOfUpperVertebrae();

/// What lies below each region's last disc, with or without an extra vertebra.
std::map<long, std::string> catalogueOfLowerVertebrae();

}  // namespace vertana
