#pragma once
// One task on many studies, in several processes.

#include <functional>
#include <string>
#include <vector>

#include "cli/StudySession.h"

namespace cli {

struct ManyStudies {
  std::vector<std::string> studies;  ///< folders or, with a database, Study Instance UIDs; none: all of the database
  std::string database;              ///< empty: none
  int jobs = 1;                      ///< processes at most
  /// Does the task, in a process of its own, on each study that the source has chosen; the exit status. What is flushed
  /// at once to std::cout is printed whole.
  std::function<int(StudySource& source)> task;
  std::string heading;  ///< printed first, when there is a study
  std::string between;  ///< printed between what was flushed
};

/// Does the task on every study, and prints what came of it in the order of `studies`, or by date. What is wrong with
/// one study is printed and does not keep back the others; the highest exit status of all.
int forManyStudies(const ManyStudies& many);

}  // namespace cli
