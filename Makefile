# Thin wrapper over CMake. `make tour` builds and runs the tour; `make test` builds and runs
# every test. Both install missing Debian packages first when run as root.
BUILD ?= build
JOBS ?= $(shell nproc)
CMAKE_FLAGS ?=

.PHONY: tour test bench sanitize clean

tour:
	tools/install-deps.sh tour
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=Release -DQON_BUILD_TESTS=OFF -DQON_BUILD_BENCH=OFF $(CMAKE_FLAGS)
	cmake --build $(BUILD) -j $(JOBS) --target qon-tour
	$(BUILD)/examples/qon-tour

test:
	tools/install-deps.sh test
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=Release -DQON_BUILD_TESTS=ON -DQON_BUILD_BENCH=OFF $(CMAKE_FLAGS)
	cmake --build $(BUILD) -j $(JOBS)
	cd $(BUILD) && ctest -j $(JOBS) --output-on-failure

bench:
	tools/install-deps.sh bench
	cmake -S . -B $(BUILD)-bench -DCMAKE_BUILD_TYPE=Release -DQON_BUILD_TESTS=OFF -DQON_BUILD_BENCH=ON
	cmake --build $(BUILD)-bench -j $(JOBS)

sanitize:
	$(MAKE) test BUILD=$(BUILD)-san CMAKE_FLAGS="-DQON_SANITIZE=ON -DCMAKE_BUILD_TYPE=RelWithDebInfo"

clean:
	rm -rf $(BUILD) $(BUILD)-san $(BUILD)-bench
