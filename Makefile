# The two commands of the README: `make run` and `make test`.
BUILD ?= build
JOBS ?= $(shell nproc)

.PHONY: run test build deps clean bench

deps:
	@bash tools/install-deps.sh

build: deps
	@cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=Release > /dev/null
	@cmake --build $(BUILD) -j$(JOBS)
	@# the sample dataset beside the program, where Open Dataset starts
	@[ -f $(BUILD)/sample/20_wind.shp ] || $(BUILD)/marlowan-gendata --size small --seed 1 $(BUILD)/sample

run: build
	@cd $(BUILD) && ./marlowan

test: build
	@cd $(BUILD) && QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j$(JOBS)

bench: build
	@bash bench/run.sh $(BUILD)

clean:
	rm -rf $(BUILD)
