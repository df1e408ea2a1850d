# Set-up, build and test in one command each. Everything lands in build/.
BUILD      ?= build
JOBS       ?= $(shell nproc)
CMAKE_ARGS ?= -DCMAKE_BUILD_TYPE=RelWithDebInfo

.PHONY: all deps configure build test run bench package clean

all: build

deps:
	@scripts/install-deps

$(BUILD)/CMakeCache.txt: | deps
	@cmake -S . -B $(BUILD) $(CMAKE_ARGS) >/dev/null

configure: deps $(BUILD)/CMakeCache.txt

build: configure
	@cmake --build $(BUILD) -j $(JOBS)

test: build
	@cd $(BUILD) && ctest --output-on-failure -j $(JOBS)

# The Debian package krldv_<version>_amd64.deb, in $(BUILD).
package: build
	@cd $(BUILD) && cpack -G DEB >/dev/null && ls krldv_*.deb

run: build
	@scripts/run-main $(BUILD)

bench: build
	@scripts/run-bench $(BUILD)

clean:
	rm -rf $(BUILD)
