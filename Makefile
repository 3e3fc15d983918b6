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
	@cmake -S . -B $(BUILD_DIR) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVEKTKK_WERROR=ON >/dev/null

build: configure
	cmake --build $(BUILD_DIR) -j$(JOBS)

test: build
	ctest --test-dir $(BUILD_DIR) --output-on-failure -j$(JOBS)

demo: build
	$(BUILD_DIR)/tools/demo/vektkk_demo

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

clean:
	rm -rf $(BUILD_DIR) $(SAN_DIR)
