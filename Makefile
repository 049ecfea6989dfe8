# Short commands for the usual jobs. What they build and how stands in CMakePresets.json.
SECONDS ?= 60
FILE ?= tests/data/metadata.doc
WERROR ?= OFF
TESTS ?=
VERSION := $(shell sed -nE 's/^ +VERSION ([0-9.]+)$$/\1/p' CMakeLists.txt)
ARCHIVE := libKELXStStorage-$(VERSION)
JOBS := $(shell nproc)
KELST := build/release/tools/kelst
FOLDERS := $(wildcard base compound property storage tools tests bench fuzz examples)

# $(call quiet,NAME,COMMAND): the output goes to build/NAME.log, which is shown on failure only.
define quiet
	@mkdir -p build && echo "$(1) (build/$(1).log)"
	@{ $(2); } >build/$(1).log 2>&1 || { cat build/$(1).log; echo "$(1) failed"; exit 1; }
endef
# $(call build,PRESET,ARGUMENTS OF CMAKE)
build = $(call quiet,build-$(1),cmake --preset $(1) $(2) && cmake --build --preset $(1))
# $(call test,PRESET): the closing lines, or all but the passed tests when one failed.
define test
	@ctest --preset $(1) -j$(JOBS) $(TESTS) >build/test-$(1).log 2>&1 || \
	  { grep -vE ' Passed |^ +Start ' build/test-$(1).log; exit 1; }
	@grep -E 'tests passed|Total Test time' build/test-$(1).log
endef

# Every target is a job and no file.
.PHONY: $(shell sed -nE 's/^([a-z-]+):.*/\1/p' Makefile)
help: ## this list
	@sed -nE 's/^([a-z-]+):.*## /make \1\t/p' Makefile | expand -t 22

run: ## build kelst and show what is in a compound file; FILE=path chooses the file
	@scripts/install-packages run
	@# A configured folder is kept as it is; a new one must not need the packages of the tests.
	$(call quiet,build-kelst,{ [ -f build/release/build.ninja ] || \
	  cmake --preset release -DKELX_BUILD_TESTS=OFF; } && \
	  cmake --build --preset release --target kelst)
	@$(KELST) info "$(FILE)"
	@$(KELST) ls "$(FILE)"
	@$(KELST) props "$(FILE)"

test: ## build everything and run every test
	@scripts/install-packages run test
	$(call build,release,-DKELX_BUILD_TESTS=ON -DKELX_WERROR=$(WERROR))
	$(call test,release)

asan: ## every test under the address and undefined-behaviour sanitizers
	@scripts/install-packages run test
	$(call build,asan)
	$(call test,asan)

tsan: ## the tests of threads under the thread sanitizer
	@scripts/install-packages run test
	$(call build,tsan)
	$(call test,tsan)

clang: ## build with clang++, warnings being errors, and compile every public header alone
	@scripts/install-packages run test lint
	$(call build,clang)

lint: clang ## clang-tidy over the libraries and the tool
	$(call quiet,clang-tidy,run-clang-tidy -quiet -p build/clang -j$(JOBS) \
	  '^$(CURDIR)/(base|compound|property|storage|tools)/')

format: ## format every source
	@scripts/install-packages lint
	@find $(FOLDERS) *.h -name '*.h' -o -name '*.cpp' | xargs clang-format -i

format-check: ## fail when a source is not formatted
	@scripts/install-packages lint
	@find $(FOLDERS) *.h -name '*.h' -o -name '*.cpp' | xargs clang-format --dry-run --Werror

# Those of limits are left out: valgrind needs more memory than a hostile file may cost.
valgrind: ## the tests under valgrind, which finds leaks and reads of what was never written
	@scripts/install-packages run test valgrind
	$(call build,release,-DKELX_BUILD_TESTS=ON)
	@for test in $$(ls build/release/tests/kelx_*_tests | grep -v hostile); do \
	  echo "$$test" && valgrind --quiet --trace-children=yes --leak-check=full --error-exitcode=99 \
	    --suppressions=$(CURDIR)/tests/valgrind.supp "$$test" --gtest_brief=1 || exit 1; \
	done

coverage: ## lines of the library that the tests reach: build/coverage.txt, build/coverage/html
	@scripts/install-packages run test coverage
	$(call build,coverage)
	@mkdir -p build/coverage/html && find build/coverage -name '*.gcda' -delete
	$(call test,coverage)
	@gcovr --root . --object-directory build/coverage --exclude-directories '.*CompilerId.*' \
	  --filter '(base|compound|property|storage)/' --txt build/coverage.txt \
	  --html-details build/coverage/html/index.html --print-summary --fail-under-line 95

bench: ## run the benchmarks and print the table of targets; numbers go to build/bench.json
	@scripts/install-packages run bench
	$(call build,bench)
	@build/bench/bench/kelx_bench --benchmark_out=build/bench.json --benchmark_out_format=json \
	  | sed -n '/^target/,$$p'

fuzz: ## run each fuzz target for SECONDS (60); what they find stays in build/fuzz
	@scripts/install-packages run lint
	$(call build,fuzz)
	@for target in compound_file property_stream entry_name; do \
	  mkdir -p build/fuzz/found/$$target && \
	  build/fuzz/fuzz/fuzz_$$target -max_total_time=$(SECONDS) -max_len=65536 -timeout=10 \
	    -rss_limit_mb=1024 -print_final_stats=1 -artifact_prefix=build/fuzz/found/ \
	    build/fuzz/found/$$target fuzz/corpus/$$target >build/fuzz/$$target.log 2>&1 || \
	    { tail -40 build/fuzz/$$target.log; exit 1; }; \
	  grep -E 'DONE|cov:' build/fuzz/$$target.log | tail -1; \
	done

docs: ## the reference of the public headers and the guide, into build/docs/html
	@scripts/install-packages docs
	$(call quiet,docs,doxygen docs/Doxyfile)

symbols: ## take what the libraries export now for what they should export
	@scripts/install-packages run test
	$(call build,release)
	@UPDATE=1 cmake/check-symbols.sh cmake build/release/libKELXBase.so \
	  build/release/libKELXStStorage.so

package: ## Debian packages in build/package, tried out in an empty root where root runs this
	@scripts/install-packages run package
	@rm -f build/package/*.deb
	$(call quiet,build-package,eval "$$(DEB_BUILD_MAINT_OPTIONS=hardening=+bindnow \
	  dpkg-buildflags --export=sh)" && cmake --preset package && cmake --build --preset package)
	@tests/package/check-debian.sh build/package

dist: ## the sources of the last commit in build/, as an archive
	@scripts/install-packages package
	@mkdir -p build && git archive --prefix=$(ARCHIVE)/ -o build/$(ARCHIVE).tar.gz HEAD
	@echo build/$(ARCHIVE).tar.gz

distcheck: dist ## build the archive of `dist` and run its tests of the tool and of installing
	@scripts/install-packages run test
	@rm -rf build/distcheck && mkdir build/distcheck
	@tar -xf build/$(ARCHIVE).tar.gz -C build/distcheck
	$(call quiet,build-distcheck,cd build/distcheck/$(ARCHIVE) && \
	  cmake --preset release -DKELX_BUILD_FUZZ=OFF && \
	  cmake --build --preset release --target KELXStStorage kelst kelx_cli_tests && \
	  ctest --preset release -j$(JOBS) -L '^(cli|package)$$')

check: ## all that must hold before a change is merged
	@scripts/install-packages browser
	@$(MAKE) --no-print-directory test WERROR=ON TESTS='-C thorough'
	@$(MAKE) --no-print-directory asan tsan lint format-check docs package
	@$(MAKE) --no-print-directory fuzz SECONDS=10

clean: ## remove all that was built
	rm -rf build
