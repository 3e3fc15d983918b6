# The two commands of the README:
#   make demo   installs what is missing, builds, runs the demo
#   make test   installs what is missing, builds, runs every test
BUILD_DIR ?= build
JOBS ?= 2

.PHONY: all deps configure build test demo sanitize tsan release-clang test-arm fuzz mutants clean

all: build

deps:
	@./scripts/install-deps.sh

configure: deps
	@cmake -S . -B $(BUILD_DIR) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVEKTKK_WERROR=ON >/dev/null

build: configure
	cmake --build $(BUILD_DIR) -j$(JOBS)

test: build
	ctest --test-dir $(BUILD_DIR) --output-on-failure -j$(JOBS)

# The build's own output goes to a log, so that the demo's few lines stand out.
demo: configure
	@mkdir -p $(BUILD_DIR)
	@echo "Building (log: $(BUILD_DIR)/build.log) ..."
	@cmake --build $(BUILD_DIR) -j$(JOBS) >$(BUILD_DIR)/build.log 2>&1 || \
	  { tail -n 30 $(BUILD_DIR)/build.log; exit 1; }
	@./tools/demo/run-demo.sh $(BUILD_DIR)

# Every test again under AddressSanitizer and UndefinedBehaviorSanitizer
# (packaging checks left out: they look at the release library).
SAN_DIR ?= build-sanitize
SAN_FLAGS = -fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined
sanitize: deps
	@cmake -S . -B $(SAN_DIR) -DCMAKE_BUILD_TYPE=Debug -DVEKTKK_BUILD_BENCH=OFF -DVEKTKK_WERROR=ON \
	  -DCMAKE_C_FLAGS="$(SAN_FLAGS)" -DCMAKE_CXX_FLAGS="$(SAN_FLAGS)" \
	  -DCMAKE_EXE_LINKER_FLAGS="$(SAN_FLAGS)" -DCMAKE_SHARED_LINKER_FLAGS="$(SAN_FLAGS)" >/dev/null
	cmake --build $(SAN_DIR) -j$(JOBS)
	ctest --test-dir $(SAN_DIR) --output-on-failure -j$(JOBS) -E '^packaging\.'

# Host threads using the library at once, under ThreadSanitizer, for several
# seconds.
TSAN_DIR ?= build-tsan
TSAN_FLAGS = -fsanitize=thread -fno-omit-frame-pointer
tsan: deps
	@cmake -S . -B $(TSAN_DIR) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVEKTKK_WERROR=ON \
	  -DVEKTKK_BUILD_BENCH=OFF -DVEKTKK_BUILD_TOOLS=OFF \
	  -DCMAKE_C_FLAGS="$(TSAN_FLAGS)" -DCMAKE_CXX_FLAGS="$(TSAN_FLAGS)" \
	  -DCMAKE_EXE_LINKER_FLAGS="$(TSAN_FLAGS)" -DCMAKE_SHARED_LINKER_FLAGS="$(TSAN_FLAGS)" >/dev/null
	cmake --build $(TSAN_DIR) -j$(JOBS) --target threads_tests
	TMPDIR=/dev/shm VEKTKK_THREADS_SECONDS=4 TSAN_OPTIONS="halt_on_error=1 exitcode=66" \
	  $(TSAN_DIR)/tests/threads_tests

# A release as a distribution would build it, with Debian's clang.
CLANG_DIR ?= build-clang
release-clang: deps
	@CC=clang CXX=clang++ cmake -S . -B $(CLANG_DIR) -DCMAKE_BUILD_TYPE=Release \
	  -DVEKTKK_WERROR=ON -DVEKTKK_BUILD_BENCH=OFF >/dev/null
	cmake --build $(CLANG_DIR) -j$(JOBS)
	ctest --test-dir $(CLANG_DIR) --output-on-failure -j$(JOBS)

# Every test again for the loggers' processors, 32- and 64-bit ARM, built
# with Debian's cross compilers and run under qemu-user (ctest runs each test
# through the emulator that the toolchain file names). The targets' packages
# are unpacked into sysroots under .cache/arm/ (see scripts/install-deps.sh).
ARM_TARGETS = arm-linux-gnueabihf aarch64-linux-gnu
test-arm:
	@./scripts/install-deps.sh --arm
	@for t in $(ARM_TARGETS); do \
	  cmake -S . -B build-$$t --toolchain $(CURDIR)/cmake/toolchains/$$t.cmake \
	    -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVEKTKK_WERROR=ON -DVEKTKK_BUILD_BENCH=OFF >/dev/null && \
	  cmake --build build-$$t -j$(JOBS) && \
	  ctest --test-dir build-$$t --output-on-failure -j$(JOBS) || exit 1; \
	done

# Every fuzz target for FUZZ_SECONDS each, one after another and at low
# priority, built with clang's libFuzzer and sanitizers in a tree of its own
# (see fuzz/README.md). Working corpora are kept in $(FUZZ_DIR)/fuzz/corpus.
FUZZ_DIR ?= build-fuzz
FUZZ_SECONDS ?= 60
fuzz: deps
	@CC=clang CXX=clang++ cmake -S . -B $(FUZZ_DIR) -DCMAKE_BUILD_TYPE=RelWithDebInfo \
	  -DVEKTKK_WERROR=ON -DVEKTKK_FUZZ=ON -DVEKTKK_BUILD_TESTS=OFF -DVEKTKK_BUILD_BENCH=OFF \
	  -DVEKTKK_BUILD_TOOLS=OFF >/dev/null
	cmake --build $(FUZZ_DIR) -j$(JOBS) --target fuzz_all
	./fuzz/run-fuzzers.sh $(FUZZ_DIR) $(FUZZ_SECONDS)

# How many small faults planted in src/ and platform/ the tests catch: a
# short sample (MUTANTS_SAMPLE of them, drawn by MUTANTS_SEED) rebuilt and
# tested one by one in a tree of its own, with the packaging checks left out.
# It edits the sources while it runs (each is restored), so start from a
# clean working tree. About a minute per mutant on two cores; CI does not
# run it.
MUTANTS_DIR ?= build-mutants
MUTANTS_SAMPLE ?= 40
MUTANTS_SEED ?= 1
MUTANTS_TOOL ?= $(CURDIR)/../shared/tools/mutants.py
mutants: deps
	@test -f $(MUTANTS_TOOL) || { echo "mutants.py not found at $(MUTANTS_TOOL) (set MUTANTS_TOOL)"; exit 2; }
	@cmake -S . -B $(MUTANTS_DIR) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVEKTKK_BUILD_BENCH=OFF >/dev/null
	cmake --build $(MUTANTS_DIR) -j$(JOBS)
	python3 $(MUTANTS_TOOL) --build $(MUTANTS_DIR) --sample $(MUTANTS_SAMPLE) --seed $(MUTANTS_SEED)

clean:
	rm -rf $(BUILD_DIR) $(SAN_DIR) $(TSAN_DIR) $(CLANG_DIR) $(FUZZ_DIR) $(MUTANTS_DIR) $(foreach t,$(ARM_TARGETS),build-$(t))
