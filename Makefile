# The two set-up commands of a fresh Debian/Ubuntu machine.
.PHONY: run test

run:
	scripts/install-deps
	cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release
	cmake --build build --target velmora velmora-cli srm velmora-diskutil
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
