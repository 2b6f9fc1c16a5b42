"""Each family of commands through the library against aicam-sim, with its errors and statuses."""
from __future__ import annotations

import pytest

import aicam


def test_device_information_and_echo(module: aicam.Module) -> None:
    module.ping("hello")
    assert module.get_device_version().startswith("SIM-FW ")
    assert module.get_dev_sn() == "SIM000000017"
    assert module.get_dev_model() == "SIMCAM-M1"
    assert module.get_dev_model_app_ver() == "SIM-APP 1.8.0"
    assert module.get_cpu_temperature() == 42
    assert module.get_ae_sensor_model() == 2643


def test_face_library(module: aicam.Module) -> None:
    module.add_face("alice")
    module.add_face_by_image("bob", b"\xff\xd8 not much of a picture \xff\xd9")
    portrait = module.add_face_return_image("carol")
    assert portrait[:2] == b"\xff\xd8" and portrait[-2:] == b"\xff\xd9"   # a whole JPEG, freed by the package
    image = bytes(range(256)) * 10
    for position in range(0, len(image), 1000):
        module.add_face_slice("dave", len(image), position, position + 1000 >= len(image),
                              image[position:position + 1000])
    feature = module.query_feature("alice")
    assert len(feature) == aicam.FEATURE_LENGTH
    module.add_feature("erin", feature)
    assert module.get_device_face_id() == ["alice", "bob", "carol", "dave", "erin"]
    assert module.get_device_face_library_num() == 5
    assert module.query_face("erin") and not module.query_face("zed")
    module.delete_face("bob")
    assert module.get_device_face_id() == ["alice", "carol", "dave", "erin"]
    module.delete_all_faces()
    assert module.get_device_face_id() == [] and module.get_device_face_library_num() == 0


def test_recognition_and_comparison(module: aicam.Module) -> None:
    module.add_face("alice")
    assert module.query_recognize() == 0x21            # idle before any start: a state, not an error
    module.start_one_to_num_recognize(rec_mode=1)
    assert module.query_recognize() == 0
    module.pause_recognize()
    assert module.query_recognize() == 0x20
    module.resume_recognize()
    assert module.query_recognize() == 0
    reference = module.add_face_return_image("carol")
    module.start_one_to_one_recognize(reference)
    module.start_one_to_one_recognize_slice(len(reference), 0, True, reference)
    assert module.static_face_compare()[:2] == b"\xff\xd8"
    assert module.static_face_compare_return_image(reference)[:2] == b"\xff\xd8"
    half = len(reference) // 2
    assert module.static_face_compare_slice(1, len(reference), 0, False, reference[:half]) == b""
    assert module.static_face_compare_slice(1, len(reference), half, True, reference[half:])[:2] == b"\xff\xd8"


def test_settings_round_trip(module: aicam.Module) -> None:
    module.set_rec_config('{"threshold":0.75}')
    assert '"threshold":0.75' in module.get_rec_config()
    module.set_recognize_count(4, 7)
    assert module.get_recognize_count() == (4, 7)
    module.set_template_update(True)
    assert module.get_template_update() is True
    module.set_ir_light(150, 60)
    assert module.get_ir_light() == (150, 60)
    module.set_frame_rate(15)
    assert module.get_frame_rate() == 15
    module.set_screen_direction(3)
    assert module.get_screen_direction() == 3
    module.set_device_no_flicker_hz(1, 1, False)
    assert module.get_device_no_flicker_hz(1) == (1, False)
    module.set_camera_stream(False, 1)
    assert module.get_camera_stream(1) is False
    assert module.get_luminous_sensitivity_threshold() == 120
    for call in (lambda: module.set_rotate_angle(2), lambda: module.set_resolution(1),
                 lambda: module.set_stream_format(0), lambda: module.switch_cam_rgb_ir(1),
                 lambda: module.set_uvc_switch(0), lambda: module.open_auto_upload_face_info_in_frame(),
                 lambda: module.close_auto_upload_face_info_in_frame(), lambda: module.set_qr_code_switch(True, 2),
                 lambda: module.open_auto_upload_ai_info(2, 3), lambda: module.close_auto_upload_ai_info()):
        call()   # each raises unless the module answered status 0


def test_maintenance_states(start_simulator) -> None:
    simulator = start_simulator("--reboot-quiet", "0")
    with aicam.Module(simulator.port) as module:
        module.set_frame_rate(12)
        module.reset()                     # back to the factory settings
        assert module.get_frame_rate() == 25
        module.add_face("alice")
        module.recovery(1)                 # the full recovery empties the face library
        assert module.get_device_face_library_num() == 0
        module.reboot(2)
        module.set_umode_to_engin()
        with pytest.raises(aicam.Error) as refused:
            module.reboot(5)
        assert refused.value.code == aicam.Result.INVALID_ARGUMENT


def test_module_status_and_library_errors(module: aicam.Module) -> None:
    module.add_face("alice")
    with pytest.raises(aicam.ModuleStatus) as twice:
        module.add_face("alice")
    assert twice.value.status == twice.value.code == 0x10
    assert str(twice.value) == "module status 16"
    with pytest.raises(aicam.ModuleStatus) as missing:
        module.delete_face("nobody")
    assert missing.value.status == 0x11
    with pytest.raises(aicam.Error) as short:
        module.add_feature("frank", "too short")
    assert short.value.code == aicam.Result.INVALID_ARGUMENT and not isinstance(short.value, aicam.ModuleStatus)
    assert short.value.text == aicam.result_text(-4) and str(short.value).endswith("(-4)")
    module.disconnect_serial()
    with pytest.raises(aicam.Error) as unlinked:
        module.ping()
    assert unlinked.value.code == aicam.Result.REQUEST_FAILED


def test_serial_port_that_cannot_be_opened(scratch, library_path: str) -> None:
    with pytest.raises(aicam.Error) as failed:
        with aicam.Module(scratch / "no-such-port"):
            pass
    assert failed.value.code == aicam.Result.PORT_UNAVAILABLE


def test_discovery_refuses_ids_out_of_range(library_path: str) -> None:
    assert all(isinstance(found, aicam.ModuleInfo) for found in aicam.list_modules(partial=True))
    with pytest.raises(aicam.Error) as refused:
        aicam.list_modules(vendor_id=0x10000)
    assert refused.value.code == aicam.Result.INVALID_ARGUMENT
    video, serial = aicam.enum_device()
    assert all("video" in node for node in video) and all("tty" in node for node in serial)
