// The command parser: the normalised text of a GET DATA command becomes an import plan.
//
// The text begins "GET DATA /TYPE = TXT  /" and ends with a line feed and a full stop. Keywords are
// read in any letter case. A command that is not right posts exactly one error and gives no plan;
// warnings are collected and do not stop the parsing. Time and memory grow with the length of the
// text, whatever it holds. Host's thread; nothing here throws but the standard library for want of
// memory, and what the adapter throws.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "HostFramework/DACAdapter.h"
#include "command/SubcommandValues.h"
#include "command/SyntaxScanner.h"
#include "model/MessageText.h"
#include "model/TxtWzVar.h"
#include "plan/TxtWzExecFile.h"

namespace textwizard {

// What ParseVariable met. The numbers are fixed.
enum VariableResult : int {
  kVariableAdded = 0,
  kVariablesEnd = 1,
  kVariableError = 2,
  kVariablesEndAtMap = 10,
};

// What ParseSubCommand met. The numbers are fixed.
enum SubcommandResult : int { kSubcommand = 0, kSubcommandsEnd = 1, kSubcommandError = 2 };

// One subcommand as scanned. The same object serves all subcommands of a command and the value is
// not cleared in between: MAP, which has none of its own, is seen with the value before it.
struct Subcommand {
  std::string name;
  std::string value;
  // The integer after the value; 0 when there is none.
  std::int64_t number = 0;
};

class TxtWzParser {
 public:
  // A parser without a command.
  TxtWzParser();
  // Keeps a copy of `syntax`. The adapter converts the file's path and gives the plan its handles;
  // it is not owned and may be null.
  TxtWzParser(const char* syntax, DACAdapterBase* adapter);
  TxtWzParser(const TxtWzParser&) = delete;
  TxtWzParser& operator=(const TxtWzParser&) = delete;

  // The plan of the command; null after posting an error.
  std::unique_ptr<TxtWzExecFile> ParseToExecutor();
  // For a host that keeps imports in the compact form; commands never have it.
  // The plan of the compact header: a type word, numbers, the delimiters' line and the file name.
  // Null for an unknown type word; posts nothing. The number of variables that the header announces
  // is then variableCounter().
  std::unique_ptr<TxtWzExecFile> ParseFileType();

  // The file's name in the host's form; null until it is known.
  const char* GetFile() const { return values_.file ? values_.file->c_str() : nullptr; }
  std::uint32_t GetErrorMesID() const { return errorId_; }
  // Text of the last error; null until there is one.
  const char* GetErrorMesToken() const { return errorMessage_ ? errorMessage_->c_str() : nullptr; }
  const ErrorTextList& warnings() const { return warnings_; }
  std::uint64_t variableCounter() const { return variableCounter_; }
  // The word that GetNextInt read last, as far as it is kept.
  const std::string& scratch() const { return scratch_; }
  const SyntaxScanner& scanner() const { return scanner_; }

  // Keeps the text of message `id` with its token (null: none) as the error of the command, in the
  // place of an earlier one, or adds it to the warnings. Always true.
  bool PostErrorMsg(std::uint32_t id, const char* token, bool warning);

  // The steps of ParseToExecutor. Those that answer false have posted an error.
  bool GetSyntax();
  SubcommandResult ParseSubCommand(Subcommand& subcommand);
  bool SetSyntaxParam(const Subcommand& subcommand);
  bool VerifySyntax();
  std::unique_ptr<TxtWzExecFile> SetExecFile() const;
  // Reads one variable of the list at the cursor and adds it to the plan.
  VariableResult ParseVariable(TxtWzExecFile* plan);

  // Reads the value of FILE, DELIMITERS or QUALIFIER at the cursor, quoted or not, into
  // subcommand.value. False when no other subcommand follows it.
  bool GetFilePath(Subcommand& subcommand);
  // n = the decimal integer at `p`, 0 without one. The word at `p`, which holds the integer, is
  // kept for the message of a number that does not do.
  void GetNextInt(const char* p, std::int64_t& n);
  // Resolves "\t" and "\\" at the start of a DELIMITERS value; later ones stay as they are.
  static void ConvertSlashTab(std::string& value);

  // Parts of a variable. Those that answer false have posted nothing.
  // The next word, cut to the characters that a name may have.
  void GetVarName(std::string& name);
  // Fixed columns: the record that the variable lies in, by the record mark at the cursor, if any.
  bool GetLineNumber(std::uint32_t& record);
  // Fixed columns: the next word, a column range a-b.
  bool GetPositions(std::uint32_t& start, std::uint32_t& width);
  // The format at the cursor. `length` is the number of columns, 0 when delimited.
  bool GetFormat(std::uint32_t length, std::uint32_t& code, std::uint32_t& width,
                 std::uint32_t& decimals);
  // Cuts a format word into its name, which is left in `word`, and its numbers.
  static void ParseFormat(std::string& word, std::uint32_t& width, std::uint32_t& decimals);
  // Width and decimals of a format that the command gave neither of.
  static void ApplyFormatDefaults(std::uint32_t length, std::uint32_t code, std::uint32_t& width,
                                  std::uint32_t& decimals);
  // Cuts a width that the format cannot have, with a warning that names the variable.
  void AdjustFormat(std::uint32_t code, std::uint32_t& width, const char* name);

  // Readers of the compact header and its variables.
  void ParseSampling(TxtWzExecFile* plan);
  void ParseFileName(TxtWzExecFile* plan);
  void ParseVarName(TxtWzVar* variable);
  void ParseDataType(TxtWzVar* variable);
  void ParseVarLength(TxtWzVar* variable);

 private:
  struct Setter;

  // Posts the error; always false.
  bool Fail(MessageId id, const char* token);
  SubcommandResult FailSubcommand(MessageId id, const char* token);
  SubcommandResult FailWithoutEquals(const Subcommand& subcommand, const std::string& text);

  // One subcommand each; false after posting an error.
  bool SetFile(const Subcommand& subcommand);
  bool SetEncoding(const Subcommand& subcommand);
  bool SetArrangement(const Subcommand& subcommand);
  bool SetFirstCase(const Subcommand& subcommand);
  bool SetDelCase(const Subcommand& subcommand);
  bool SetFixCase(const Subcommand& subcommand);
  bool SetImportCase(const Subcommand& subcommand);
  bool SetDelimiters(const Subcommand& subcommand);
  bool SetQualifier(const Subcommand& subcommand);
  bool SetLeadingSpaces(const Subcommand& subcommand);
  bool SetMultipleSpaces(const Subcommand& subcommand);
  bool SetDataTypeMin(const Subcommand& subcommand);
  bool SetMap(const Subcommand& subcommand);
  // YES or NO of the two space options; false after posting `bad`.
  bool SetIgnore(const Subcommand& subcommand, const char* slashName, MessageId bad,
                 std::optional<bool>& ignore);

  bool NameIsFree(const std::string& name, const TxtWzExecFile& plan);
  VariableResult ParseDelimitedVariable(TxtWzExecFile* plan);
  VariableResult ParseFixedVariable(TxtWzExecFile* plan);

  SyntaxScanner scanner_;
  DACAdapterBase* adapter_ = nullptr;

  SubcommandValues values_;
  // The variable list ended with /MAP.
  bool mapBehindVariables_ = false;

  // How far the variable list has been read.
  std::uint64_t variableCounter_ = 0;
  std::int64_t currentRecord_ = 1;

  std::string scratch_;
  std::uint32_t errorId_ = kNoArrangement;
  std::optional<std::string> errorMessage_;
  ErrorTextList warnings_;
};

}  // namespace textwizard
