# Everyday commands. `make demo` and `make test` install what a fresh Debian machine lacks first.
BUILD     ?= build
SAN_BUILD ?= build-asan
BENCH_BUILD ?= build-bench
FUZZ_BUILD ?= build-fuzz
FUZZ_SECONDS ?= 60
JOBS      ?= $(shell nproc)
CMAKE_FLAGS ?=

.PHONY: all deps configure build demo test sanitize bench install format clean package pictures docs fuzz

all: build

deps:
	@scripts/install-deps.sh

configure: deps
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo $(CMAKE_FLAGS)

build: configure
	cmake --build $(BUILD) -j$(JOBS)

demo: build
	$(BUILD)/apps/zelkon-demo/zelkon-demo

# The PostgreSQL tests need a server: one is started on 127.0.0.1 for the run when none is given.
test: build
	@scripts/run-tests.sh $(BUILD) $(JOBS)

sanitize: deps
	cmake -S . -B $(SAN_BUILD) -DCMAKE_BUILD_TYPE=Debug -DZELKON_SANITIZE=ON $(CMAKE_FLAGS)
	cmake --build $(SAN_BUILD) -j$(JOBS)
	@scripts/run-tests.sh $(SAN_BUILD) $(JOBS)

bench: deps
	cmake -S . -B $(BENCH_BUILD) -DCMAKE_BUILD_TYPE=Release -DZELKON_BUILD_BENCH=ON -DZELKON_BUILD_TESTS=OFF -DZELKON_BUILD_DEMO=OFF
	cmake --build $(BENCH_BUILD) -j$(JOBS)
	@for b in $(BENCH_BUILD)/bench/*/bench_*; do \
		if [ -f "$$b" ] && [ -x "$$b" ]; then QT_QPA_PLATFORM=offscreen "$$b" || exit 1; fi; \
	done

# libFuzzer with clang: the library itself is built with the fuzzer's coverage and the
# sanitizers; every target runs FUZZ_SECONDS from its corpus.
fuzz: deps
	cmake -S . -B $(FUZZ_BUILD) -DCMAKE_CXX_COMPILER=clang++-14 -DCMAKE_BUILD_TYPE=RelWithDebInfo -DZELKON_BUILD_FUZZ=ON -DZELKON_BUILD_TESTS=OFF -DZELKON_BUILD_DEMO=OFF -DZELKON_BUILD_DESIGNER=OFF $(CMAKE_FLAGS)
	cmake --build $(FUZZ_BUILD) -j$(JOBS)
	@fuzz/run.sh $(FUZZ_BUILD) $(FUZZ_SECONDS)

install: build
	cmake --install $(BUILD)

# The API reference, from the public headers, in $(BUILD)/docs/html/index.html. An undocumented
# public class or member fails it.
docs: configure
	cmake --build $(BUILD) --target docs

format:
	git ls-files '*.cpp' '*.h' | xargs clang-format -i

clean:
	rm -rf $(BUILD) $(SAN_BUILD) $(BENCH_BUILD) $(FUZZ_BUILD)

# Debian packages (libzelkon2, libzelkon-dev, zelkon-designer-plugin) in $(BUILD)/packages.
package: build
	cd $(BUILD) && cpack -G DEB

# The pictures of the controls in docs/images, in English and in Russian.
pictures: configure
	@scripts/make-pictures.sh $(BUILD) $(JOBS)
