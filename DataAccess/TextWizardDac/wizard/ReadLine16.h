// Lines of UTF-16 text, unit by unit.
#pragma once

#include <cstdint>
#include <cstdio>

namespace textwizard {

// How the wizard's handler reads a file.
enum WizardMode : int {
  kWizardBytes = 0,  // single-byte, or the locale's code page
  kWizardUtf8 = 1,
  kWizardUtf16BigEndian = 2,
  kWizardUtf16LittleEndian = 3,
};

// Reads the next 16-bit unit, big-endian in kWizardUtf16BigEndian, little-endian in every other
// mode. A last odd byte becomes a unit whose missing byte is 0xFF, as in an import. Surrogates are
// units like any other. False at the end of the file.
bool ReadUnit(int mode, FILE* stream, std::uint16_t* unit);

// Reads one line into `buffer`, which holds `size` bytes: two per unit in this machine's order,
// then two zero bytes. A full buffer ends the line without its line end.
//
// In the two UTF-16 modes a carriage return, a line feed, or the pair ends the line and is not
// stored. In any other mode the byte-swapped carriage return 0x0D00 (with a following 0x0A00) is
// stored as 0x0A00, and only the end of the file or a full buffer ends the line.
//
// Returns the buffer, or null at the end of the file before any unit.
char* ReadLine16(int mode, char* buffer, int size, FILE* stream);

}  // namespace textwizard
