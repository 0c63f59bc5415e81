// What precompiled headers belong to; see VornPrecompiled.cmake.
