#include "workstation/dicom/Toolkit.h"

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dcrledrg.h>
#include <dcmtk/dcmdata/dctk.h>
#include <dcmtk/dcmjpeg/djdecode.h>
#include <dcmtk/dcmjpls/djdecode.h>

namespace workstation {
namespace {

std::string setUp() {
  OFLog::configure(OFLogger::OFF_LOG_LEVEL);
  DcmRLEDecoderRegistration::registerCodecs();
  DJDecoderRegistration::registerCodecs(EDC_photometricInterpretation, EUC_default, EPC_colorByPixel);
  DJLSDecoderRegistration::registerCodecs(EJLSUC_default, EJLSPC_colorByPixel);
  if (dcmDataDict.isDictionaryLoaded()) return {};
  return "The DICOM data dictionary was not found, so that files in implicit VR cannot be read: install the DICOM "
         "toolkit's data files or let the environment variable DCMDICTPATH name the dictionary.";
}

}  // namespace

const std::string& prepareToolkit() {
  static const std::string problem = setUp();
  return problem;
}

}  // namespace workstation
