# Two commands for a fresh Debian machine: `make run` and `make test`.
SHELL := /bin/bash
BUILD_DIR ?= build
CMAKE_FLAGS ?=
JOBS ?= $(shell nproc 2>/dev/null || echo 2)

# Debian packages, in lists by what needs them. `make run` installs only the
# first: what building the game and playing it take.
#   compiler and build tools; SDL2 for the window, keys and sound (and
#   libx11 for the X connection the game watches itself); espeak-ng and its
#   voices; libsamplerate for the samples' rate conversion; libpulse for the
#   sound server; libspeechd for --speech=dispatcher.
PLAY_PACKAGES := g++ cmake make pkg-config libsdl2-dev libx11-dev \
                 libespeak-ng-dev espeak-ng-data libsamplerate0-dev libpulse-dev libspeechd-dev
# `make package`: dpkg-dev and file make cpack's dependency list.
PACKAGE_PACKAGES := dpkg-dev file
# `make test` adds the test tools:
#   GoogleTest; Xvfb, xdotool and the X fonts SDL's message box draws with
#   for the end-to-end tests; lintian, desktop-file-utils, appstream and
#   groff-base check the package, menu entry, metainfo and manual;
#   speech-dispatcher with its espeak-ng module for the dispatcher tests;
#   PulseAudio and its tools for the private sound servers; clang and its
#   run-time libraries for the sanitizer build and the fuzzer.
TEST_PACKAGES := $(PACKAGE_PACKAGES) libgtest-dev libgmock-dev xvfb xdotool xfonts-base \
                 lintian desktop-file-utils appstream groff-base \
                 speech-dispatcher speech-dispatcher-espeak-ng pulseaudio pulseaudio-utils \
                 clang libclang-rt-14-dev
# `make web` and `make test`: the browser build and its tests, with Debian's
# emscripten (which brings clang, binaryen and node-acorn) and Chromium.
# node and npm come from Debian only where the machine has none: a newer
# node installed another way carries its own npm, which Debian's would
# conflict with.
WEB_PACKAGES := emscripten chromium
WEB_DIR ?= build-web
WEB_PORT ?= 8000
# emcc's own scripts look for Debian's node modules here.
EMSCRIPTEN_ENV := NODE_PATH=/usr/share/nodejs

# The sanitizer build and the fuzzer, both with clang.
ASAN_DIR ?= build-asan
FUZZ_DIR ?= build-fuzz
FUZZ_SECONDS ?= 60
CLANG_FLAGS := -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ -DQUORBLE_SANITIZE=ON
FUZZ_SEEDS := tests/fuzz/corpus
FUZZ_FOUND := tests/fuzz/regressions

.PHONY: deps deps-play deps-web game build web web-run test run package clean test-asan fuzz \
        fuzz-bounded fuzz-build

INSTALL_MISSING := tools/install_packages.sh

# What building and playing need, and no more.
deps-play:
	@$(INSTALL_MISSING) $(PLAY_PACKAGES)

# Everything: the game, the package and every test.
deps:
	@$(INSTALL_MISSING) $(PLAY_PACKAGES) $(TEST_PACKAGES)

deps-web:
	@command -v node >/dev/null && command -v npm >/dev/null || $(INSTALL_MISSING) nodejs npm
	@$(INSTALL_MISSING) $(WEB_PACKAGES)
	@# npm ci again only when the lock file changed since the last install.
	@cmp -s package-lock.json node_modules/.quorble-lock 2>/dev/null || \
	  { npm ci --no-audit --no-fund --loglevel=error && cp package-lock.json node_modules/.quorble-lock; }

# The game without its tests, so GoogleTest and the rest need not be there.
game: deps-play
	cmake -S . -B $(BUILD_DIR) -DQUORBLE_TESTS=OFF $(CMAKE_FLAGS)
	cmake --build $(BUILD_DIR) -j $(JOBS)

# The game and every test; the browser tests play the site `make web` builds.
build: deps
	cmake -S . -B $(BUILD_DIR) -DQUORBLE_TESTS=ON -DQUORBLE_WEB_SITE=$(CURDIR)/$(WEB_DIR)/site \
	  $(CMAKE_FLAGS)
	cmake --build $(BUILD_DIR) -j $(JOBS)

# The site in $(WEB_DIR)/site, for any static web host. The samples and the
# companion's table are made by the tools of the build for this machine,
# which is set up here only when there is none yet.
web: deps-play deps-web
	test -f $(BUILD_DIR)/CMakeCache.txt || cmake -S . -B $(BUILD_DIR) -DQUORBLE_TESTS=OFF $(CMAKE_FLAGS)
	cmake --build $(BUILD_DIR) -j $(JOBS) --target samples strategy_table
	$(EMSCRIPTEN_ENV) emcmake cmake -S . -B $(WEB_DIR) -DCMAKE_BUILD_TYPE=Release \
	  -DQUORBLE_HOST_BUILD=$(CURDIR)/$(BUILD_DIR) $(CMAKE_FLAGS) >/dev/null
	$(EMSCRIPTEN_ENV) cmake --build $(WEB_DIR) -j $(JOBS)

web-run: web
	@echo "Quorble is served on http://127.0.0.1:$(WEB_PORT)/ (Ctrl+C stops it)"
	cd $(WEB_DIR)/site && python3 -m http.server --bind 127.0.0.1 $(WEB_PORT)

test: build web
	cd $(BUILD_DIR) && ctest --output-on-failure -j $(JOBS)
	@if command -v clang++ >/dev/null; then $(MAKE) --no-print-directory fuzz-bounded; \
	 else echo "clang++ missing: the fuzzer's bounded run is skipped"; fi

# Every test again, built with AddressSanitizer and UndefinedBehaviorSanitizer.
# The one suppression is a leak inside libdbus, reached through SDL.
test-asan: deps
	cmake -S . -B $(ASAN_DIR) $(CLANG_FLAGS) $(CMAKE_FLAGS)
	cmake --build $(ASAN_DIR) -j $(JOBS)
	# libspeechd parses the daemon's 13,000-voice list with strstr over the
	# whole reply; ASan's checking strstr measures the haystack at each call,
	# which makes that parse take minutes. Our own code calls no strstr.
	cd $(ASAN_DIR) && \
	  ASAN_OPTIONS=detect_leaks=1:abort_on_error=1:intercept_strstr=0 \
	  UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
	  LSAN_OPTIONS=suppressions=$(CURDIR)/tests/lsan.supp:print_suppressions=0 \
	  ctest --output-on-failure -j $(JOBS)

fuzz-build: deps
	cmake -S . -B $(FUZZ_DIR) $(CLANG_FLAGS) -DQUORBLE_FUZZ=ON $(CMAKE_FLAGS)
	cmake --build $(FUZZ_DIR) -j $(JOBS) --target fuzz_files

# The fuzzer for FUZZ_SECONDS (0: until stopped). Its findings land in
# tests/fuzz/regressions, which every build replays from then on.
fuzz: fuzz-build
	mkdir -p $(FUZZ_DIR)/corpus
	$(FUZZ_DIR)/tests/fuzz_files -max_total_time=$(FUZZ_SECONDS) -timeout=10 -rss_limit_mb=2048 \
	  -print_final_stats=1 -artifact_prefix=$(FUZZ_FOUND)/ \
	  $(FUZZ_DIR)/corpus $(FUZZ_SEEDS) $(FUZZ_FOUND)

# The bounded run of `make test`: only the figures and any finding are shown.
fuzz-bounded: fuzz-build
	$(MAKE) --no-print-directory fuzz FUZZ_SECONDS=60 2>&1 | \
	  grep -E "^(stat::|Done|==|SUMMARY|oracle|.*Test unit written)" ; \
	  test $${PIPESTATUS[0]} -eq 0

run: game
	cd $(BUILD_DIR) && ./quorble

# One .deb in the build folder, for `sudo apt install ./build/quorble_*.deb`.
package: game
	@$(INSTALL_MISSING) $(PACKAGE_PACKAGES)
	rm -f $(BUILD_DIR)/quorble_*.deb
	cd $(BUILD_DIR) && cpack -G DEB

clean:
	rm -rf $(BUILD_DIR) $(ASAN_DIR) $(FUZZ_DIR) $(WEB_DIR)
