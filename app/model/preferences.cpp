#include "app/model/preferences.hpp"
