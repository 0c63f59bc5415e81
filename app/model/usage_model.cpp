#include "app/model/usage_model.hpp"
