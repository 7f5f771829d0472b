# Python3_EXECUTABLE, for tests that drive whole programs: the system's own where there is one. What
# stands before it in the path may be a script that looks for it anew at each start.
find_program(Python3_EXECUTABLE python3 PATHS /usr/bin NO_DEFAULT_PATH)
find_package(Python3 REQUIRED COMPONENTS Interpreter)
