# The front door. Each target installs what is missing, builds Release into build/ and runs.

JOBS ?= $(shell nproc)
SCENES ?= 60
release = cmake --preset release && cmake --build build -j $(JOBS)

.PHONY: all check test tidy conform coverage fuzz mutate ports gallery demo docs windows packages dist release-check wasm page bench clean

all:
	scripts/setup build
	$(release)

# The loop after an edit, for one instruction set: make check SET=v1|v3|v4|all.
check:
	scripts/setup build
	JOBS=$(JOBS) scripts/check $(SET)

# Tests and budgets, then the tests again under sanitizers.
test:
	scripts/setup build gallery kit capture csharp docs python
	JOBS=$(JOBS) scripts/test

# clang-tidy over the files of today, or those whose path matches: make tidy ARGS=src/core.
tidy:
	scripts/setup build tidy
	JOBS=$(JOBS) scripts/tidy $(ARGS)

# The kernels against the reference at depth, also under sanitizers: make conform SCENES=200.
conform: all
	JOBS=$(JOBS) scripts/conform $(SCENES) $(ARGS)

# Lines and branches of src/ that the tests reach; in build-coverage/report/ line by line.
coverage:
	scripts/setup build coverage
	JOBS=$(JOBS) scripts/coverage

# Scenes, or with ARGS=bitmap files, that a fuzzer makes up.
fuzz:
	scripts/setup build
	JOBS=$(JOBS) scripts/fuzz $(ARGS)

# Whether the differential notices lines that are wrong, of the reference and of the library: make mutate ARGS=fetch.
mutate:
	scripts/setup build
	JOBS=$(JOBS) scripts/mutate $(ARGS)

# The golden sums from other compilers and machines: make ports ARGS=32.
ports:
	JOBS=$(JOBS) scripts/ports $(ARGS)

# Zips for Windows in build-windows/, tested under Wine: make windows ARGS=x86_64.
windows:
	JOBS=$(JOBS) scripts/windows $(ARGS)

# Pictures and an HTML page in build/gallery/.
gallery:
	scripts/setup build gallery kit
	$(release) --target gallery
	build/gallery/ninefold-gallery --out build/gallery $(ARGS)

# The examples' windows; without a display their pictures, in build/demo/.
demo:
	scripts/setup build kit
	JOBS=$(JOBS) scripts/demo

# The headers' manual as HTML, in build/docs/html/; with ARGS=--pictures also the pictures of docs/ (needs what demo needs).
docs:
	scripts/setup docs
	scripts/docs $(ARGS)

# The library as a WebAssembly module, tested under Node and in Chromium.
wasm:
	scripts/setup wasm
	JOBS=$(JOBS) scripts/wasm

# The library in a browser, one file: page/dist/index.html.
page:
	scripts/setup page kit capture
	JOBS=$(JOBS) scripts/page $(ARGS)

# Debian packages in build-packages/, tested where they are installed: make packages ARGS=--twice, or for arm64 ARGS=--arm64.
packages:
	scripts/setup build kit capture docs packages
	JOBS=$(JOBS) scripts/packages $(ARGS)

# The source archive in build-dist/; with ARGS=--check built and tested without a network.
dist:
	scripts/setup build
	JOBS=$(JOBS) scripts/dist $(ARGS)

# What a release needs, line by line: done or missing.
release-check:
	JOBS=$(JOBS) scripts/release-check $(ARGS)

bench:
	scripts/setup build bench
	$(release) --target bench
	build/bench/ninefold-bench --out=build/bench $(ARGS)

clean:
	rm -rf build build-*
