# The two set-up commands of a fresh Debian/Ubuntu machine, `make package` for the Debian
# package, and `make fuzz` for developers.
.PHONY: run test package fuzz

run:
	scripts/install-deps
	cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release
	cmake --build build --target velmora velmora-cli srm velmora-diskutil velmora-privileged-helper
	@if [ -z "$$DISPLAY" ] && [ -z "$$WAYLAND_DISPLAY" ]; then \
		echo "No display found: starting Velmora Data Eraser under xvfb-run"; \
		xvfb-run -a build/bin/velmora; \
	else \
		build/bin/velmora; \
	fi

test:
	scripts/install-deps
	cmake -S . -B build-test -G Ninja -DCMAKE_BUILD_TYPE=Debug -DVELMORA_SANITIZE=ON
	cmake --build build-test
	cd build-test && ctest --output-on-failure

# The Debian package build/velmora_<version>_<arch>.deb (Release, installed under /usr);
# only what the package holds is built, not the tests.
package:
	scripts/install-deps
	cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=/usr
	cmake --build build --target velmora_installables
	cd build && cpack -G DEB

# Builds the libFuzzer targets with clang (build-fuzz/) and runs each for 60 s from the
# seed corpus in tests/fuzz/corpus; fails when any of them finds a crash.
fuzz:
	scripts/install-deps --fuzz
	cmake -S . -B build-fuzz -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_C_COMPILER=clang \
		-DCMAKE_CXX_COMPILER=clang++ -DVELMORA_FUZZ=ON
	cmake --build build-fuzz --target velmora_fuzzers
	scripts/run-fuzzers build-fuzz 60
