#include "ui/glyph/menu_bar_glyph.hpp"
