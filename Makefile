# make run   installs what is missing, builds and starts the program
# make test  installs what is missing, builds and runs every test
# make package  builds the Debian package
BUILD_DIR ?= build
ASAN_DIR ?= build-asan
FUZZ_DIR ?= build-fuzz
FUZZ_SECONDS ?= 60
JOBS ?= $(shell nproc)

.PHONY: run test deps build package bench format fuzz

deps:
	@bash scripts/install-deps.sh

build: deps
	cmake -S . -B $(BUILD_DIR) -DCMAKE_BUILD_TYPE=RelWithDebInfo
	cmake --build $(BUILD_DIR) -j $(JOBS)

package: build
	cmake --build $(BUILD_DIR) --target package

run: build
	@bash scripts/run.sh $(BUILD_DIR)

# Every test of the full build, then the engine's tests once more under
# AddressSanitizer and UndefinedBehaviorSanitizer, less the exhaustive
# seven-card count, which would take minutes there, then every fuzz target
# for 20 s.
test: build
	ctest --test-dir $(BUILD_DIR) --output-on-failure -j $(JOBS)
	cmake -S . -B $(ASAN_DIR) -DCMAKE_BUILD_TYPE=Debug -DFELTHAWK_ENGINE_ONLY=ON \
	    -DFELTHAWK_SANITIZE=ON
	cmake --build $(ASAN_DIR) -j $(JOBS)
	ctest --test-dir $(ASAN_DIR) --output-on-failure -j $(JOBS) -LE exhaustive
	$(MAKE) fuzz FUZZ_SECONDS=20

# The fuzz targets of tests/fuzz, built by clang, each run for FUZZ_SECONDS.
fuzz: deps
	cmake -S . -B $(FUZZ_DIR) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_COMPILER=clang++ \
	    -DFELTHAWK_FUZZ=ON -DFELTHAWK_FUZZ_SECONDS=$(FUZZ_SECONDS)
	cmake --build $(FUZZ_DIR) --target felthawk_fuzz_targets -j $(JOBS)
	ctest --test-dir $(FUZZ_DIR) --output-on-failure -j $(JOBS)

bench: build
	$(BUILD_DIR)/bench/felthawk_bench --benchmark_repetitions=5 --benchmark_report_aggregates_only=true
	$(BUILD_DIR)/bench/felthawk_capture_bench --wm=openbox --depth=24
	$(BUILD_DIR)/bench/felthawk_capture_bench --wm=openbox --depth=16
	$(BUILD_DIR)/bench/felthawk_store_bench --benchmark_repetitions=3 --benchmark_report_aggregates_only=true
	$(BUILD_DIR)/bench/felthawk_online_bench --benchmark_repetitions=5 --benchmark_report_aggregates_only=true
	bash bench/calc_batch_bench.sh $(BUILD_DIR)
	bash bench/equity_bench.sh $(BUILD_DIR)

format:
	find . -path ./build\* -prune -o \( -name '*.cpp' -o -name '*.h' \) -print | xargs clang-format -i
