// Names of the signs that show alterations.
#pragma once

#include <string_view>

#include "musicxml/rules/numbers.h"

namespace rovescio::musicxml {

// The sign of an alteration. Quarter tones have signs of several families: where `model` is the sign of
// `modelled` in one of them, that family's is taken. Alterations without a sign of their own are told by
// "other".
std::string_view accidentalName(const Decimal& alter, const Decimal& modelled, std::string_view model);

}  // namespace rovescio::musicxml
