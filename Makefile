# `make run` imports an example and shows it; `make test` builds and runs every test. Both set up
# the machine first.

.PHONY: setup build run install package test coverage bench bench-units bench-build lint lint-all model
.PHONY: screenshots clean

setup:
	@tools/install-packages

build: setup
	@cmake --preset release >/dev/null
	@cmake --build --preset release

# The import of a bare file, and then the command that it printed.
run: build
	build/release/bin/textwizard import examples/survey/survey.csv --command build/survey.sps | tee build/survey.txt
	PATH="$(CURDIR)/build/release/bin:$$PATH" sh -c "$$(grep '^textwizard run ' build/survey.txt)"

# Program, libraries, headers, manual pages and completions into PREFIX; below DESTDIR where a package
# is made of it.
PREFIX ?= /usr/local
install: build
	DESTDIR='$(DESTDIR)' cmake --install build/release --prefix '$(PREFIX)' --strip

# Debian packages into build/release.
package: build
	cd build/release && cpack

# The suites in which threads meet; the thread sanitizer runs these.
threaded := TxtWzMultiThreadMgr host_data host_messages host_text host_threads wizard whole
threaded_tests := $(addsuffix _tests,$(threaded))
empty :=
space := $(empty) $(empty)

# Everything under g++ with warnings as errors and again under the address and undefined-behaviour
# sanitizers, and what has threads under the thread sanitizer.
test: setup
	@tools/install-readers
	@tools/install-browser
	cmake --preset dev >/dev/null && cmake --build --preset dev
	cmake --preset tsan >/dev/null && cmake --build --preset tsan --target $(threaded_tests)
	cmake --preset asan-ubsan >/dev/null && cmake --build --preset asan-ubsan
	ctest --preset tsan -R '^($(subst $(space),|,$(threaded_tests))):'
	ctest --preset asan-ubsan
	ctest --preset dev

# Which lines and branches the tests reach; some minutes.
coverage: setup
	@tools/measure-coverage

# Whole imports against the floor and other readers, into docs/benchmarks.md; ends in some forty
# minutes. `bench-units`: bytes a second of each stage of an import.
ROUNDS ?= 3
MEGABYTES ?= 200
REPORT ?= docs/benchmarks.md
bench: bench-build
	@tools/install-bench-peers
	/usr/bin/python3 bench/run_benchmarks.py --bin build/bench/bin --rounds $(ROUNDS) \
	  --megabytes $(MEGABYTES) --report $(REPORT)
	/usr/bin/python3 bench/run_output_benchmarks.py --bin build/bench/bin --rounds $(ROUNDS) \
	  --megabytes $(MEGABYTES) --report $(REPORT)

bench-units: bench-build
	@for program in build/bench/bin/*_benchmarks; do echo "== $${program##*/}"; $$program || exit 1; done

bench-build:
	@tools/install-packages bench
	cmake --preset bench >/dev/null && cmake --build --preset bench

# Pictures of every step of the wizard's page into build/screenshots, and those of the docs.
screenshots: setup
	@tools/install-packages screenshots
	@tools/install-browser
	cmake --preset dev >/dev/null && cmake --build --preset dev --target textwizard
	node tests/wizard/screenshots.mjs build/dev/bin/textwizard build/screenshots
	for pair in cell:columns light-encodings:encodings stations-light-1280-fixed:ruler \
	    light-1280-imported:result; do \
	  pngquant --force --quality 60-95 --output docs/pictures/wizard-$${pair#*:}.png \
	    build/screenshots/$${pair%:*}.png || exit 1; done

# Layout, the rules of the tree, clang's warnings and checks. `lint-all`: also the checks that take
# long, on every unit.
lint: setup
	@tools/lint

lint-all: setup
	@tools/lint --all

# The hand-off between the threads, in every order of their steps; some minutes.
model: setup
	@tools/check-model

clean:
	rm -rf build
