# Two commands for a fresh Debian machine: `make run` and `make test`.
SHELL := /bin/bash
BUILD_DIR ?= build
CMAKE_FLAGS ?=
JOBS ?= $(shell nproc 2>/dev/null || echo 2)

# Debian packages the build, the tests, the package and the game need:
# compiler and libraries; Xvfb, xdotool and the X fonts SDL's message box
# draws with for the end-to-end tests;
# dpkg-dev and file for cpack's dependency list; lintian, desktop-file-utils,
# appstream and groff-base check the package, menu entry, metainfo and manual;
# clang and its run-time libraries for the sanitizer build and the fuzzer;
# libsamplerate for the samples' rate conversion; PulseAudio and its tools for
# the benchmark's private sound server.
PACKAGES := g++ cmake make pkg-config libsdl2-dev libespeak-ng-dev espeak-ng-data \
            libgtest-dev libgmock-dev xvfb xdotool \
            dpkg-dev file lintian desktop-file-utils appstream groff-base \
            libspeechd-dev speech-dispatcher speech-dispatcher-espeak-ng \
            libsamplerate0-dev pulseaudio pulseaudio-utils \
            libx11-dev xfonts-base clang libclang-rt-14-dev

# The sanitizer build and the fuzzer, both with clang.
ASAN_DIR ?= build-asan
FUZZ_DIR ?= build-fuzz
FUZZ_SECONDS ?= 60
CLANG_FLAGS := -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ -DQUORBLE_SANITIZE=ON
FUZZ_SEEDS := tests/fuzz/corpus
FUZZ_FOUND := tests/fuzz/regressions

.PHONY: deps build test run package clean test-asan fuzz fuzz-bounded fuzz-build

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

run: build
	cd $(BUILD_DIR) && ./quorble

# One .deb in the build folder, for `sudo apt install ./build/quorble_*.deb`.
package: build
	rm -f $(BUILD_DIR)/quorble_*.deb
	cd $(BUILD_DIR) && cpack -G DEB

clean:
	rm -rf $(BUILD_DIR) $(ASAN_DIR) $(FUZZ_DIR)
