#include "app/model/menu_bar_layout.hpp"
