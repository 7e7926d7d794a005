// Data sources, their variables and cases, and the iterators that deliver cases.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "HostFramework/Messages.h"

// One 8-byte cell of a case. A case is an array of cells and an OBS* points at its first. A number
// takes one cell (a double); a string of byte width w takes ceil(w / 8), padded with blanks.
struct alignas(8) OBS {
  unsigned char bytes[8];
};

// The value of a number that is missing: the lowest finite double.
inline constexpr double kSystemMissing = -1.7976931348623157e308;

struct QANT_Format {
  int type = 5;
  int width = 8;
  int decimals = 2;
  bool operator==(const QANT_Format&) const = default;
};

// A variable of a data source. Owned by its source.
class QANT_Variable {
 public:
  // `width` 0 makes a number, a positive width a string of that many bytes. `obsIndex` is the
  // number of its first cell.
  QANT_Variable(int width, std::size_t obsIndex);

  void SetName(const char* name);
  const std::string& GetName() const;
  // Print and write format; a width below the format's minimum is raised to it.
  void SetFormat(int type, int width, int decimals);
  void SetWriteFormat(int type, int width, int decimals);
  const QANT_Format& GetFormat() const;
  const QANT_Format& GetWriteFormat() const;
  // Columns that a listing gives the variable; 8 at first.
  int GetDisplayWidth() const;
  void SetDisplayWidth(int width);
  // 0 for a number, else the string's byte width.
  int GetType() const;
  // Number of its first cell in a case.
  std::size_t ObsIndex() const;

 private:
  std::string name_;
  QANT_Format format_;
  QANT_Format writeFormat_;
  int displayWidth_ = 8;
  int type_;
  std::size_t obsIndex_;
};

class QANT_InputCaseIterator;
class QANT_DataSource;

// Sets every number of a case to missing and every string to blanks.
void ClearCase(const QANT_DataSource& source, OBS* obs);

class QANT_DataSource {
 public:
  explicit QANT_DataSource(QANT_DataSource* parent);
  QANT_DataSource(const QANT_DataSource&) = delete;
  QANT_DataSource& operator=(const QANT_DataSource&) = delete;
  virtual ~QANT_DataSource();
  virtual int GetNSplitVars() const;
  virtual int GetSplitVarIndex(unsigned int) const;
  virtual int GetSplitVarID(unsigned int) const;
  virtual bool GetSplitqSeparate() const;
  // A new iterator that fills `obs` (GetObsAreaSize() bytes, outliving it). The caller owns it.
  // Null when there is no memory for one; nothing is thrown. A file that cannot be read is found by
  // the first Next, which posts an error and returns false.
  virtual QANT_InputCaseIterator* MakeIterator(OBS* obs) const = 0;
  // Bytes of one case.
  virtual std::size_t GetObsAreaSize() const;
  // Number of cases, or -1 while unknown.
  virtual long long RowCount() const;
  virtual bool IsLoaded() const;
  virtual int NParents() const;

  // Appends a variable (width as for QANT_Variable) and returns it; the source owns it. *status,
  // when given, becomes 0. A negative width or no source gives null and a *status that is not 0.
  // Host's thread, before any iterator exists.
  static QANT_Variable* MakeVariable(QANT_DataSource* source, int width, int* status);
  std::size_t GetNVariables() const;
  // Null when there is no variable of that index.
  QANT_Variable* GetVariable(std::size_t index) const;
  void SetFileSpec(const char* path);
  const std::string& GetFileSpec() const;

 private:
  friend class QANT_InputCaseIterator;
  friend void ClearCase(const QANT_DataSource& source, OBS* obs);

  // Where a variable's value lies in a case. Kept side by side, apart from the variables, because
  // every value that is stored looks its place up.
  struct Column {
    std::size_t cell;
    std::size_t width;  // 0 for a number, else bytes
  };
  const Column* FindColumn(int column) const {
    const auto index = static_cast<std::size_t>(column);
    return column >= 0 && index < columns_.size() ? &columns_[index] : nullptr;
  }

  QANT_DataSource* parent_;
  std::string fileSpec_;
  std::size_t cells_ = 0;
  std::vector<Column> columns_;
  std::vector<std::unique_ptr<QANT_Variable>> variables_;
};

// Delivers the cases of a source one by one into the case buffer it was made with. One thread at a
// time; the source and the buffer outlive it. The buffer starts with every number missing and every
// string blank.
class QANT_InputCaseIterator {
 public:
  // `obs` may be null for an iterator that never delivers a case.
  QANT_InputCaseIterator(const QANT_DataSource& source, OBS* obs);
  QANT_InputCaseIterator(const QANT_InputCaseIterator&) = delete;
  QANT_InputCaseIterator& operator=(const QANT_InputCaseIterator&) = delete;
  virtual ~QANT_InputCaseIterator();
  // The monitor that messages go to; not owned; null drops them.
  virtual void SetErrorMonitor(ErrorMonitor* monitor);
  virtual bool IsSeekOK() = 0;
  // Makes case n (from 0) the one that the following Next delivers.
  virtual bool Seek(long long n) = 0;
  // Number of cases delivered so far, as a position.
  virtual long long Tell() const = 0;
  // Fills the case buffer with the next case; false at the end of the data.
  virtual bool Next() = 0;
  virtual void Commit() = 0;

  OBS* GetObsPointer() const { return obs_; }
  ErrorMonitor* GetErrorMonitor() const { return monitor_; }
  // Stores a value in the cells of column `column` (counted from 0 over the source's variables).
  // Text is cut to whole characters that fit the variable's width, or padded with blanks. Nothing
  // is stored without a case buffer, in a column that does not exist, or in one of the other kind.
  void SetColumnValue(int column, const char* text);
  void SetColumnValue(int column, std::string_view text);
  void SetColumnValue(int column, double value);

 private:
  const QANT_DataSource& source_;
  OBS* obs_;
  ErrorMonitor* monitor_ = nullptr;
};

// The data sources of the process, by name. Host's thread only.
class ServerDataManager {
 public:
  static ServerDataManager* GetInstance();
  // Takes ownership of `source`. The empty name is the active source's: adding under it replaces
  // (and destroys) the active source. A source that has a name already moves to the new one.
  // `keep` is the host's and false here.
  void Add(QANT_DataSource* source, const char* name, bool keep);
  // The source of that name, or null. Still owned by the manager.
  QANT_DataSource* Find(const char* name) const;
  // Destroys the source of that name; false when there is none.
  bool Remove(const char* name);

 private:
  ServerDataManager();
  ~ServerDataManager();
  struct State;
  std::unique_ptr<State> state_;
};
