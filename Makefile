# Two commands for a fresh Debian machine: `make run` and `make test`.
BUILD_DIR ?= build
CMAKE_FLAGS ?=
JOBS ?= $(shell nproc 2>/dev/null || echo 2)

# Debian packages the build, the tests and the game need.
PACKAGES := g++ cmake make pkg-config libsdl2-dev libespeak-ng-dev espeak-ng-data \
            libgtest-dev libgmock-dev xvfb xdotool

.PHONY: deps build test run clean

deps:
	@missing="$$(for p in $(PACKAGES); do \
	    dpkg-query -W -f='$${Status}\n' $$p 2>/dev/null | grep -q '^install ok installed$$' || echo $$p; \
	  done)"; \
	if [ -n "$$missing" ]; then \
	  echo "Installing:" $$missing; \
	  sudo=""; [ "$$(id -u)" -eq 0 ] || sudo=sudo; \
	  $$sudo apt-get update -qq && \
	  DEBIAN_FRONTEND=noninteractive $$sudo apt-get install -y -qq $$missing; \
	fi

build: deps
	cmake -S . -B $(BUILD_DIR) $(CMAKE_FLAGS)
	cmake --build $(BUILD_DIR) -j $(JOBS)

test: build
	cd $(BUILD_DIR) && ctest --output-on-failure -j $(JOBS)

run: build
	cd $(BUILD_DIR) && ./quorble

clean:
	rm -rf $(BUILD_DIR)
