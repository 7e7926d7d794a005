#include "HostFramework/Text.h"

char* ReadLine(char* buffer, int size, FILE* stream) { return std::fgets(buffer, size, stream); }
