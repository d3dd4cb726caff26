# Nobody needs to remember flags. `make help` lists the commands; ARGS="..." goes to the program that runs.

.DEFAULT_GOAL := help
SHELL := /bin/sh
CMAKE_BUILD_PARALLEL_LEVEL ?= $(shell getconf _NPROCESSORS_ONLN)
export CMAKE_BUILD_PARALLEL_LEVEL

.PHONY: help setup build run demo test test-lab sanitize bench fuzz format lint layers screenshots install clean

help: ## List these commands
	@awk -F ':.*## ' '/^[a-z-]+:.*## / { printf "  make %-11s %s\n", $$1, $$2 }' $(MAKEFILE_LIST)

setup: ## Install what is missing to build, test and check
	@scripts/setup build test lint

build: ## Build the programs into build/release/bin
	@scripts/setup build
	@scripts/build release

run: build ## Start Vespra (in the terminal where there is no display)
	@scripts/run $(ARGS)

demo: build ## Play an agent session from start to end, in 15 seconds
	@scripts/demo

test: ## Build and run the tests
	@scripts/setup build test
	@scripts/build dev
	@ctest --preset dev

test-lab: ## Run the tests that need the lab (a whole Linux laptop, not part of this repository)
	@scripts/test-lab

sanitize: ## Run the tests under the address, undefined-behaviour and thread sanitizers
	@scripts/setup build test
	@scripts/build asan
	@ctest --preset asan
	@scripts/build tsan
	@ctest --preset tsan

bench: ## Run the benchmarks and the whole-process measurements
	@scripts/setup build bench
	@scripts/build bench
	@scripts/bench

fuzz: ## Fuzz every parser for 20 seconds each
	@scripts/setup build fuzz
	@scripts/fuzz

format: ## Format the sources
	@scripts/setup lint
	@scripts/format

lint: ## Check the sources with clang-tidy
	@scripts/setup build test lint
	@scripts/lint

layers: ## Draw which folder knows which, and fail on an arrow that points up
	@scripts/setup build test
	@cmake --preset dev >/dev/null
	@scripts/layers

screenshots: build ## Draw the pictures of the panel in docs/images anew
	@scripts/setup screenshots
	@scripts/screenshots

install: build ## Install the programs (PREFIX=/usr/local)
	@cmake --install build/release --prefix "$(or $(PREFIX),/usr/local)"

clean: ## Remove everything that was built
	@rm -rf build
