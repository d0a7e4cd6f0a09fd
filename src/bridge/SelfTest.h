// The effect's test of itself, for support: engine and model with random inputs. What it must find to be true
// holds whatever comes in.
#pragma once

namespace Bridge {

// Throws std::runtime_error that names the first invariant which did not hold, and the round. Touches no
// instance.
void selfTest(int rounds);

} // namespace Bridge
