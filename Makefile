# The front door. Each target installs what is missing, builds Release into build/ and runs.

JOBS ?= $(shell nproc)
build = cmake --preset release && cmake --build build -j $(JOBS)

.PHONY: all test gallery bench conform clean

all:
	scripts/setup build
	$(build)

test:
	scripts/setup build
	$(build)
	ctest --test-dir build -j $(JOBS) --output-on-failure

clean:
	rm -rf build build-*
