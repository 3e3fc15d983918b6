# The two commands of the README:
#   make demo   installs what is missing, builds, runs the demo
#   make test   installs what is missing, builds, runs every test
BUILD_DIR ?= build
JOBS ?= 2

.PHONY: all deps configure build test demo sanitize clean

all: build

deps:
	@./scripts/install-deps.sh

configure: deps
	@cmake -S . -B $(BUILD_DIR) -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null

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
	@cmake -S . -B $(SAN_DIR) -DCMAKE_BUILD_TYPE=Debug -DVEKTKK_BUILD_BENCH=OFF \
	  -DCMAKE_C_FLAGS="$(SAN_FLAGS)" -DCMAKE_CXX_FLAGS="$(SAN_FLAGS)" \
	  -DCMAKE_EXE_LINKER_FLAGS="$(SAN_FLAGS)" -DCMAKE_SHARED_LINKER_FLAGS="$(SAN_FLAGS)" >/dev/null
	cmake --build $(SAN_DIR) -j$(JOBS)
	ctest --test-dir $(SAN_DIR) --output-on-failure -j$(JOBS) -E '^packaging\.'

clean:
	rm -rf $(BUILD_DIR) $(SAN_DIR)
