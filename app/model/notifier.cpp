#include "app/model/notifier.hpp"
