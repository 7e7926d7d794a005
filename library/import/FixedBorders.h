// Borders between fixed columns, once all lines are known.
#pragma once

#include <string_view>
#include <vector>

#include "library/sniff/SniffResult.h"

namespace library {

// A sample's lines showed the columns. Where text of other lines stands on both sides of a border
// that two columns share, it is moved to the nearest place within the two that is blank in all
// lines, if there is one and both keep some text. `filled`: the mask of all records (FilledPlaces),
// whose bytes are characters. True when a border was moved.
bool MoveBorders(std::string_view filled, std::vector<SniffColumn>* columns);

}  // namespace library
