// The region and the names that follow from it.
#include "plugin/VertanaFilter.h"
#include "spine/Catalogue.h"

namespace vertana {

namespace {

std::vector<std::string> listOfRegion(const LabelLists& lists, long region) {
  const auto entry = lists.find(region);
  return entry == lists.end() ? std::vector<std::string>() : entry->second;
}

}  // namespace

void VertanaFilter::setAnatomicalRegion(long region) {
  if (region == anatomicalRegion()) return;
  anatomicalRegion_ = region;
  reset();
  settingDidChange("anatomicalRegion");
}

void VertanaFilter::setAdditionalVertebra(bool additionalVertebraValue) {
  if (additionalVertebraValue == additionalVertebra()) return;
  additionalVertebra_ = additionalVertebraValue;
  reset();
  settingDidChange("additionalVertebra");
}

LabelLists VertanaFilter::vertebraeLabels() const { return catalogueOfVertebrae(additionalVertebra_); }

LabelLists VertanaFilter::intervertebralPlanesLabels() const { return catalogueOfDiscs(additionalVertebra_); }

std::map<long, std::string> VertanaFilter::upperVertebraeLabels() const { return catalogueOfUpperVertebrae(); }

std::map<long, std::string> VertanaFilter::lowerVertebraeLabels() const { return catalogueOfLowerVertebrae(); }

std::vector<std::string> VertanaFilter::currentVertebraeLabels() const {
  return listOfRegion(vertebraeLabels(), anatomicalRegion_);
}

std::vector<std::string> VertanaFilter::currentIntervertebralPlanesLabels() const {
  return listOfRegion(intervertebralPlanesLabels(), anatomicalRegion_);
}

}  // namespace vertana
