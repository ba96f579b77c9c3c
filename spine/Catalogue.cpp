#include "spine/Catalogue.h"

namespace vertana {

namespace {

void replaceLast(std::vector<std::string>& discs, const char* first, const char* second) {
  discs.back() = first;
  discs.emplace_back(second);
}

}  // namespace

std::map<long, std::vector<std::string>> catalogueOfVertebrae(bool additionalVertebra) {
  std::map<long, std::vector<std::string>> labels{
      {-1, {""}},
      {0, {"C1-C2", "C3", "C4", "C5", "C6", "C7"}},
      {1, {"T1", "T2", "T3", "T4", "T5", "T6", "T7", "T8", "T9", "T10", "T11", "T12"}},
      {2, {"L1", "L2", "L3", "L4", "L5"}}};
  if (additionalVertebra) {
    labels[0].emplace_back("C8");
    labels[1].emplace_back("T13");
    labels[2].emplace_back("L6");
  }
  return labels;
}

std::map<long, std::vector<std::string>> catalogueOfDiscs(bool additionalVertebra) {
  std::map<long, std::vector<std::string>> labels{{-1, {""}},
                                                  {0, {"C0-C1", "C2-C3", "C3-C4", "C4-C5", "C5-C6", "C6-C7", "C7-T1"}},
                                                  {1,
                                                   {"C7-T1", "T1-T2", "T2-T3", "T3-T4", "T4-T5", "T5-T6", "T6-T7",
                                                    "T7-T8", "T8-T9", "T9-T10", "T10-T11", "T11-T12", "T12-L1"}},
                                                  {2, {"T12-L1", "L1-L2", "L2-L3", "L3-L4", "L4-L5", "L5-S1"}}};
  if (additionalVertebra) {
    replaceLast(labels[0], "C7-C8", "C8-T1");
    replaceLast(labels[1], "T12-T13", "T13-L1");
    replaceLast(labels[2], "L5-L6", "L6-S1");
  }
  return labels;
}

std::map<long, std::string> catalogueOfUpperVertebrae() { return {{-1, ""}, {0, "C0"}, {1, "C7"}, {2, "T12"}}; }

std::map<long, std::string> catalogueOfLowerVertebrae() { return {{-1, ""}, {0, "T1"}, {1, "L1"}, {2, "S1"}}; }

}  // namespace vertana
