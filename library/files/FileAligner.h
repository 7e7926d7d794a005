// Finds the structure that several bare files share, and which column of each is which.
#pragma once

#include <string>
#include <vector>

#include "library/files/DataSetPlan.h"

namespace library {

// After a first look at all files. One thread.
class FileAligner {
 public:
  FileAligner(InputFiles& files, const DataSetSettings& settings, DataSetPlan* plan)
      : files_(files), settings_(settings), plan_(*plan) {}

  // Finds the reference, the alignment and the columns of the data set with their labels, those of
  // the reference first, and of each file its columns. What does not fit becomes kLeftOut with what
  // is wrong. False when no file holds anything.
  bool Run();

 private:
  // Of each column of a file that of the data set so far; one behind those for each it lacks.
  struct Fit {
    std::vector<std::size_t> columns;
    std::vector<std::string> added;  // labels of the columns behind
    bool byPlace = false;
  };

  void FindReference();
  void FindHeader(DataSetFile* file);
  void Align(std::size_t file);
  bool FitFile(const DataSetFile& file, Fit* fit, std::string* problem) const;
  bool FitByName(const DataSetFile& file, Fit* fit, std::string* problem) const;
  bool FitByPlace(const DataSetFile& file, Fit* fit, std::string* problem) const;
  bool LooksLikeReference(DataSetFile* file, Fit* fit) const;
  void TellDrift(std::size_t file, const Fit& fit);
  void TellRenamed(std::size_t file, const std::vector<std::string>& labels,
                   const std::vector<std::size_t>& columns);
  void Tell(DriftKind kind, std::size_t file, const std::string& column, std::string detail);
  const DataSetFile& reference() const { return plan_.files[plan_.reference]; }
  std::size_t referenceColumns() const { return reference().import.sniff.columns.size(); }

  InputFiles& files_;
  const DataSetSettings& settings_;
  DataSetPlan& plan_;
  // Of the data set's columns, so far.
  std::vector<std::string> labels_;
};

}  // namespace library
