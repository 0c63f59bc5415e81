#include "app/model/integrations.hpp"
