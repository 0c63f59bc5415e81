#include "ui/glyph/day_ring.hpp"
