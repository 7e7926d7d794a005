# `make run` imports an example and shows it; `make test` builds and runs every test. Both set up
# the machine first.

.PHONY: setup build run test bench lint model clean

setup:
	@tools/install-packages

build: setup
	@cmake --preset release >/dev/null
	@cmake --build --preset release

run: build
	build/release/bin/textwizard run examples/survey/survey.sps

# Everything under g++ with warnings as errors, then the suites again under the sanitizers.
test: setup
	cmake --preset dev >/dev/null && cmake --build --preset dev
	cmake --preset asan-ubsan >/dev/null && cmake --build --preset asan-ubsan
	cmake --preset tsan >/dev/null && cmake --build --preset tsan
	ctest --preset tsan
	ctest --preset asan-ubsan
	ctest --preset dev

bench: setup
	cmake --preset bench >/dev/null && cmake --build --preset bench

lint: setup
	@tools/lint

# The hand-off between the threads, in every order of their steps; some minutes.
model: setup
	@tools/check-model

clean:
	rm -rf build
