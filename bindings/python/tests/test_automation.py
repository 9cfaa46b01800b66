"""The two classes as hosts of the automation interface use them: errors
with number, source and Spanish description; properties, listeners and the
picture box by member name."""

import pytest

import velqua
from conftest import EXAMPLES

TIPOS = (13, "Velqua", "No coinciden los tipos")
OBJETO = (91, "Velqua", "Variable de objeto o bloque With no establecido")
DESBORDAMIENTO = (6, "Velqua", "Desbordamiento")


def raised(action):
    with pytest.raises(velqua.Error) as caught:
        action()
    e = caught.value
    return (e.number, e.source, e.description)


def test_errors_arrive_with_number_source_and_spanish_description(tmp_path, kx_tda):
    t = velqua.clsTraductor()
    missing = str(tmp_path / "missing.cfg")
    cases = [
        ("a text as the configuration", lambda: setattr(t, "Conmutador", "kx-tda.cfg"), TIPOS),
        ("a field while unbound", lambda: t.Dia, OBJETO),
        ("a missing file", lambda: velqua.clsCfgConmut().Abrir(missing),
         (-2147220003, "clsConfigConmut.Abrir",
          "No es posible encontrar el archivo deseado.\r\n Archivo :" + missing)),
        ("DB25 pin 1", lambda: kx_tda.ActivaPin(velqua.emPuertoDB25, 1, 2),
         (-2147220299, "clsConfig.EstableceEstadoPin", "No se permite conectar el PIN #1 del puerto DB25.")),
        ("a byte past 255", lambda: setattr(kx_tda, "DATOPos", 256), DESBORDAMIENTO),
        ("a 16-bit pin past 32767", lambda: kx_tda.PinesConectados(2, 40000, 1), DESBORDAMIENTO),
    ]
    for what, action, expected in cases:
        assert raised(action) == expected, what
    assert str(velqua.Error(*TIPOS)) == "No coinciden los tipos (error 13, Velqua)"


def test_a_failed_binding_leaves_the_translator_unbound(kx_tda):
    t = velqua.clsTraductor()
    t.Conmutador = kx_tda
    t.LlamadaActual = "01/19/26 08:07AM   202 01 0312598877                     00:04'51"
    assert (t.TipoLlamadaDetectada, t.Duracion, t.Extension) == (2, 291, "202")
    with pytest.raises(velqua.Error):
        t.Conmutador = 42
    assert raised(lambda: t.Duracion) == OBJETO
    t.Conmutador = kx_tda
    t.Conmutador = None  # None unbinds, as Nothing does
    assert raised(lambda: t.Marcacion) == OBJETO


def test_properties_keep_the_librarys_rules():
    cfg = velqua.clsCfgConmut()
    cases = [
        ("Marca", "Teléfonos Ñandú €", "Teléfonos Ñandú €"),
        ("Marca", "é" * 60, "é" * 50),  # cut to 50 characters
        ("Separador", "\r\n", "\r\n"),
        ("Caso", velqua.emCasoNortelNorstar0x32SMDR6, 4),
        ("Caso", 2**31 - 1, 2**31 - 1),  # any 32-bit value is stored
        ("DATOActivo", velqua.emParamFechaDia, 2),
        ("DATOPos", 255, 255),
    ]
    for name, value, expected in cases:
        setattr(cfg, name, value)
        assert getattr(cfg, name) == expected, name
    assert cfg.ListaSeparador == "13,10,0,0,0,0,0,0,0,0,"
    assert cfg.Modificado and not cfg.HayConfig()
    with pytest.raises(AttributeError):
        cfg.NombreCaso = "x"  # read-only, as in the interface
    with pytest.raises(AttributeError):
        cfg.Marka = "x"  # a misspelt member is an error, not a new attribute


def test_listeners_are_called_in_order_with_the_notifications_name():
    cfg = velqua.clsCfgConmut()
    heard = []
    a = lambda name: heard.append("a " + name)  # noqa: E731
    b = lambda name: heard.append("b " + name)  # noqa: E731
    cfg.AgregaOyente(a)
    cfg.AgregaOyente(b)
    cfg.AgregaOyente(a)
    cfg.Marca = "Panasonic"
    assert heard == ["a CambioNombreConmutador", "b CambioNombreConmutador", "a CambioNombreConmutador",
                     "a Cambios", "b Cambios", "a Cambios"]
    heard.clear()
    cfg.QuitaOyente(a)
    cfg.QuitaOyente(print)  # unknown: ignored
    cfg.Abrir(str(EXAMPLES / "hicom" / "hicom.cfg"))
    assert heard[-2:] == ["b ConfiguracionCargada", "a ConfiguracionCargada"]
    assert heard.count("b ConfiguracionCargada") == 1


def test_a_listeners_exception_comes_after_the_operation_and_every_listener():
    cfg = velqua.clsCfgConmut()
    heard = []

    def failing(name):
        if name == "CambioNombreConmutador":
            raise KeyError(name)

    cfg.AgregaOyente(failing)
    cfg.AgregaOyente(heard.append)
    with pytest.raises(KeyError, match="CambioNombreConmutador"):
        cfg.Modelo = "KX-TDA100"
    assert cfg.Modelo == "KX-TDA100"
    assert heard == ["CambioNombreConmutador", "Cambios"]


class PictureBox:
    """A picture box reached by member name, recording what the drawing does."""

    TwipsPerPixelX = 15
    TwipsPerPixelY = 15

    def __init__(self):
        object.__setattr__(self, "calls", [])

    def __setattr__(self, name, value):
        self.calls.append(f"{name} {value}")

    def TextHeight(self, text):
        self.calls.append(f"TextHeight {text}")
        return 225

    def Line(self, flags, x1, y1, x2, y2, color):
        self.calls.append(f"Line {flags} ({x1:g}, {y1:g})-({x2:g}, {y2:g}) {color:#x}")

    def Print(self, text):
        self.calls.append(f"Print {text}")


def test_drawings_reach_a_picture_box_by_member_name():
    box = PictureBox()
    velqua.clsCfgConmut().DibujaTablaConversionDB9DB25(box)
    assert box.calls[:10] == [
        "FontName Ms Serif", "FontSize 8", "Line 38 (0, 0)-(1350, 1900) 0xffffff", "TextHeight M",
        "Line 38 (0, 15)-(1350, 450) 0x800000", "Line 22 (0, 0)-(1350, 1900) 0x0",
        "ForeColor 16777215", "CurrentX 45.0", "CurrentY 15.0", "Print Tabla de conversión"]
    assert len(box.calls) > 50

    class Broken(PictureBox):
        def Print(self, text):
            raise RuntimeError("no ink")

    with pytest.raises(RuntimeError, match="no ink"):
        velqua.clsCfgConmut().DibujaConfiguracionSMDR(velqua.emPuertoDB9, Broken(), 100, 100)
