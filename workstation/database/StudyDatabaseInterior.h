#pragma once
// Shared by the sources of StudyDatabase.

#include <SQLiteCpp/Exception.h>

#include "workstation/database/Index.h"
#include "workstation/database/StudyDatabase.h"

namespace workstation {

/// Runs something that only asks the index. When the index fails, everything is read from the files into a new one, and
/// the question is asked again.
template <class Question>
auto StudyDatabase::withIndex(Question question) {
  try {
    return question();
  } catch (const SQLite::Exception& exception) {
    readWithoutIndex(exception.what());
  }
  return question();
}

}  // namespace workstation
