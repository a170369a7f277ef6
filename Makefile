# Two commands for a fresh Debian machine: `make run` and `make test`.
BUILD_DIR ?= build
CMAKE_FLAGS ?=
JOBS ?= $(shell nproc 2>/dev/null || echo 2)

# Debian packages the build, the tests, the package and the game need:
# compiler and libraries; Xvfb and xdotool for the end-to-end tests;
# dpkg-dev and file for cpack's dependency list; lintian, desktop-file-utils,
# appstream and groff-base check the package, menu entry, metainfo and manual.
PACKAGES := g++ cmake make pkg-config libsdl2-dev libespeak-ng-dev espeak-ng-data \
            libgtest-dev libgmock-dev xvfb xdotool \
            dpkg-dev file lintian desktop-file-utils appstream groff-base \
            libspeechd-dev speech-dispatcher speech-dispatcher-espeak-ng pulseaudio

.PHONY: deps build test run package clean

# apt's own progress is left out; its summary of what it fetches and
# installs, and any error, are shown.
deps:
	@missing="$$(for p in $(PACKAGES); do \
	    dpkg-query -W -f='$${Status}\n' $$p 2>/dev/null | grep -q '^install ok installed$$' || echo $$p; \
	  done)"; \
	if [ -n "$$missing" ]; then \
	  echo "Installing:" $$missing; \
	  sudo=""; [ "$$(id -u)" -eq 0 ] || sudo=sudo; \
	  status=$$(mktemp); \
	  $$sudo env DEBIAN_FRONTEND=noninteractive apt-get update -qq && \
	  { $$sudo env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends \
	      $$missing 2>&1; echo $$? >"$$status"; } | \
	    grep --line-buffered -E '^([0-9]+ upgraded|Need to get|E:|W:)'; \
	  result=$$(cat "$$status"); rm -f "$$status"; exit $${result:-1}; \
	fi

build: deps
	cmake -S . -B $(BUILD_DIR) $(CMAKE_FLAGS)
	cmake --build $(BUILD_DIR) -j $(JOBS)

test: build
	cd $(BUILD_DIR) && ctest --output-on-failure -j $(JOBS)

run: build
	cd $(BUILD_DIR) && ./quorble

# One .deb in the build folder, for `sudo apt install ./build/quorble_*.deb`.
package: build
	rm -f $(BUILD_DIR)/quorble_*.deb
	cd $(BUILD_DIR) && cpack -G DEB

clean:
	rm -rf $(BUILD_DIR)
