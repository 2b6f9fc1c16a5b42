// The shared library is made of the subsystem libraries; this unit is its anchor.
