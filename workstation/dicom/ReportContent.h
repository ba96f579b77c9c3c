#pragma once
// The content of a labelling's report, for every reader. Internal to this folder.

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmsr/dsrdoctr.h>

#include <optional>
#include <string>

#include "workstation/dicom/LabellingReport.h"

namespace workstation {

/// Puts what a labelling says into an empty tree, as a Measurement Report (PS3.16 TID 1500). False, with a phrase in
/// `problem`, when something in it cannot be told.
bool buildContent(const ReportToWrite& report, DSRDocumentTree& tree, std::string& problem);

/// What the content of a report says.
struct ReportContent {
  SavedLabelling labelling;
  ReportContext context;
};

/// Reads the content of a report, also where other programs have edited it; nothing when the report is none of a
/// labelling, or what it says of the labelling is not whole. Numbers are in single precision.
std::optional<ReportContent> parseContent(DcmItem& dataset);

}  // namespace workstation
