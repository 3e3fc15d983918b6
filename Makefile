# The two commands of the README:
#   make demo   installs what is missing, builds, runs the demo
#   make test   installs what is missing, builds, runs every test
BUILD_DIR ?= build
JOBS ?= 2

.PHONY: all deps configure build test demo clean

all: build

deps:
	@./scripts/install-deps.sh

configure: deps
	@cmake -S . -B $(BUILD_DIR) -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null

build: configure
	cmake --build $(BUILD_DIR) -j$(JOBS)

test: build
	ctest --test-dir $(BUILD_DIR) --output-on-failure -j$(JOBS)

demo: build
	$(BUILD_DIR)/tools/demo/vektkk_demo

clean:
	rm -rf $(BUILD_DIR)
