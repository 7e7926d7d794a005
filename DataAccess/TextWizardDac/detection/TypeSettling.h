// From what detection counted, or the command declared, to the format of a host variable.
#pragma once

#include "HostFramework/DataSource.h"
#include "detection/RegExMappings.h"
#include "model/ImportSettings.h"
#include "model/TxtWzVar.h"

namespace textwizard {

// Chooses the format type of an AUTO variable by the shares of its counters: above 50 percent the
// first class that reaches `minPercentage`, else only a class that holds all values. Without
// values, or without a deciding class, a string.
void SettleType(TxtWzVar& variable, double minPercentage, const RegExMappings& table);

// Brings width and decimals of a settled type to what the type allows. Decimals never fall below 0.
void NormaliseFormat(TxtWzVar& variable);

// Makes the host's variable with name, formats and display width; nothing for a skipped one. A
// string's format, but not its bytes, is widened for an encoding whose characters may take more
// bytes in the host's text. Host's thread.
void DefineVariable(QANT_DataSource* source, TxtWzVar& variable, FileEncoding encoding);

}  // namespace textwizard
