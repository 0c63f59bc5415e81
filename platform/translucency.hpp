#pragma once

namespace vorn {

/// Whether windows can let through what lies behind them, as rounded corners need. May change while running.
bool windowsCanBeTranslucent();

}  // namespace vorn
