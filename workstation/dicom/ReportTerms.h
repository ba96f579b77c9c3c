#pragma once
// The concepts of a labelling's report, shared by its writer and its reader: those of TID 1500 (PS3.16), and a few of
// our own. Internal to this folder.

#include "workstation/dicom/SpineCodes.h"

namespace workstation::term {

inline constexpr Code imagingMeasurementReport{"126000", "DCM", "Imaging Measurement Report"};
inline constexpr Code language{"121049", "DCM", "Language of Content Item and Descendants"};
inline constexpr Code english{"en", "RFC5646", "English"};
inline constexpr Code observerType{"121005", "DCM", "Observer Type"};
inline constexpr Code device{"121007", "DCM", "Device"};
inline constexpr Code deviceObserverUid{"121012", "DCM", "Device Observer UID"};
inline constexpr Code deviceObserverName{"121013", "DCM", "Device Observer Name"};
inline constexpr Code procedureReported{"121058", "DCM", "Procedure reported"};
inline constexpr Code imagingProcedure{"363679005", "SCT", "Imaging procedure"};
inline constexpr Code imageLibrary{"111028", "DCM", "Image Library"};
inline constexpr Code imageLibraryGroup{"126200", "DCM", "Image Library Group"};
inline constexpr Code modality{"121139", "DCM", "Modality"};
inline constexpr Code targetRegion{"123014", "DCM", "Target Region"};
inline constexpr Code frameOfReferenceUid{"112227", "DCM", "Frame of Reference UID"};
inline constexpr Code imagingMeasurements{"126010", "DCM", "Imaging Measurements"};
inline constexpr Code measurementGroup{"125007", "DCM", "Measurement Group"};
inline constexpr Code trackingIdentifier{"112039", "DCM", "Tracking Identifier"};
inline constexpr Code trackingUid{"112040", "DCM", "Tracking Unique Identifier"};
inline constexpr Code finding{"121071", "DCM", "Finding"};
inline constexpr Code findingSite{"363698007", "SCT", "Finding Site"};
inline constexpr Code imageRegion{"111030", "DCM", "Image Region"};
inline constexpr Code source{"260753009", "SCT", "Source"};
inline constexpr Code qualitativeEvaluations{"C0034375", "UMLS", "Qualitative Evaluations"};
inline constexpr Code comment{"121106", "DCM", "Comment"};
inline constexpr Code yes{"373066001", "SCT", "Yes"};
inline constexpr Code no{"373067005", "SCT", "No"};
inline constexpr Code noUnits{"1", "UCUM", "no units"};
inline constexpr Code intervertebralDisc{"360499006", "SCT", "Intervertebral disc"};

/// Whether the study has a labelling. By this item a report is known as one of ours.
inline constexpr Code labellingState{"STATE", privateScheme, "State of the spine labelling"};
inline constexpr Code labelled{"LABELLED", privateScheme, "Labelled"};
inline constexpr Code notLabelled{"NOT-LABELLED", privateScheme, "Not labelled"};
inline constexpr Code additionalVertebra{"EXTRA-VERTEBRA", privateScheme, "Additional vertebra in the region"};
inline constexpr Code hasLevels{"HAS-LEVELS", privateScheme, "Levels are labelled"};
/// A disc's plane: a line from its point along its normal, and the components of the normal as the labelling has it.
inline constexpr Code planeNormal{"NORMAL", privateScheme, "Normal of the plane"};
inline constexpr Code normalComponents[] = {{"NORMAL-X", privateScheme, "Normal, component to the left"},
                                            {"NORMAL-Y", privateScheme, "Normal, component to the back"},
                                            {"NORMAL-Z", privateScheme, "Normal, component to the head"}};
/// For names that have no code, and for a level that has no name.
inline constexpr Code otherLevel{"LEVEL", privateScheme, "Level of intervertebral disc"};
inline constexpr Code unnamedLevel{"LEVEL-UNNAMED", privateScheme, "Level without a name"};
inline constexpr Code otherVertebra{"VERT", privateScheme, "Vertebra"};

}  // namespace workstation::term
