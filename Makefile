# The two commands of the README: `make run` and `make test`.
BUILD ?= build
BUILD_TYPE ?= RelWithDebInfo

.PHONY: all deps build run test rehearsal bench clean format format-check

all: build

deps:
	@tools/install-deps.sh

build: deps
	@if [ ! -f $(BUILD)/build.ninja ]; then \
	  cmake -S . -B $(BUILD) -G Ninja -DCMAKE_BUILD_TYPE=$(BUILD_TYPE); fi
	cmake --build $(BUILD)

run: build
	$(BUILD)/bin/korvane

test: build
	ctest --test-dir $(BUILD) --output-on-failure

# The show rehearsal alone (it is part of `make test` too).
rehearsal: build
	ctest --test-dir $(BUILD) -L rehearsal --output-on-failure

# Every benchmark, then one table of their figures and limits (the whole
# output of each stays in $(BUILD)/bench-logs).
bench: build
	@tools/bench-table.sh $(BUILD)

format:
	clang-format -i $$(git ls-files '*.cpp' '*.h')

# Fails, naming the file and line, when a source file differs from .clang-format.
format-check: deps
	clang-format --dry-run -Werror $$(git ls-files '*.cpp' '*.h')

clean:
	rm -rf $(BUILD)
