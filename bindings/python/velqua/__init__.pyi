# Type stubs of the velqua package, for editors and type checkers.
import datetime
import os
from enum import IntEnum
from typing import BinaryIO, Callable, Iterable, Iterator, NamedTuple, Optional, TextIO, Union

import pandas

_Path = Union[str, os.PathLike[str]]

class Error(Exception):
    number: int
    source: str
    description: str
    def __init__(self, number: int, source: str, description: str) -> None: ...

class Call(NamedTuple):
    record: int
    type: int
    type_name: str
    attribute: int
    attribute_name: str
    date: Optional[Union[datetime.date, str]]
    time: Optional[Union[datetime.time, str]]
    duration: Optional[int]
    ring: Optional[int]
    dialled: Optional[str]
    extension: Optional[str]
    trunk: Optional[str]
    receiving_extension: Optional[str]
    receiving_trunk: Optional[str]
    account_code: Optional[str]
    extension_random: Optional[bool]
    error: Optional[str]
    has_seconds: Optional[bool]
    end_date: Optional[Union[datetime.date, str]]
    end_time: Optional[Union[datetime.time, str]]

class clsCfgConmut:
    Modificado: bool
    IDCfg: int
    @property
    def Version(self) -> int: ...
    @property
    def NombreVersion(self) -> str: ...
    Caso: int
    @property
    def NombreCaso(self) -> str: ...
    Marca: str
    Modelo: str
    @property
    def NombreConmutador(self) -> str: ...
    Comentarios: str
    Separador: str
    @property
    def ListaSeparador(self) -> str: ...
    @property
    def TamMaxSeparador(self) -> int: ...
    @property
    def TamMaxComentarios(self) -> int: ...
    DATOActivo: int
    CTEActivo: int
    @property
    def HayDATO(self) -> bool: ...
    @property
    def HayCTE(self) -> bool: ...
    TipoDatoDATO: int
    @property
    def TipoDatoCTE(self) -> int: ...
    DATOPos: int
    CTEPos: int
    DATOTam: int
    CTETam: int
    Constante: str
    def __init__(self) -> None: ...
    def Iniciar(self) -> None: ...
    def HayConfig(self) -> bool: ...
    def ObtNombreCaso(self, emC: int) -> str: ...
    def ActivaPin(self, iemPuerto: int, intPinVector: int, intPinConectar: int) -> None: ...
    def DesactivaPin(self, iemPuerto: int, intPinVector: int, intPinDesconectar: int) -> None: ...
    def PinesConectados(self, iemPuerto: int, intPinConmut: int, intPinPC: int) -> bool: ...
    def HayConfiguracionSMDR(self, iemPuerto: int) -> bool: ...
    def LimpiaConfiguracionSMDR(self, iemPuerto: int) -> None: ...
    def DibujaConfiguracionSMDR(
        self, iemPuerto: int, picDib: object, sglPosX: float = 0, sglPosY: float = 0
    ) -> None: ...
    def DibujaTablaConversionDB9DB25(
        self, picDib: object, sglPosX: float = 0, sglPosY: float = 0
    ) -> None: ...
    def Abrir(self, cadArch: _Path) -> None: ...
    def GuardarComo(self, cadArch: _Path) -> None: ...
    def Importar(self, cadArch: _Path) -> None: ...
    def Exportar(self, cadArch: _Path) -> None: ...
    def AgregaOyente(self, oyente: Callable[[str], object]) -> None: ...
    def QuitaOyente(self, oyente: Callable[[str], object]) -> None: ...
    @staticmethod
    def load(path: _Path) -> clsCfgConmut: ...
    def save(self, path: _Path, force: bool = False) -> None: ...
    def to_json(self) -> str: ...

Config = clsCfgConmut

class clsTraductor:
    ArchivoListaExtensionesKXTDA: str
    ArchivoLlamadasError: str
    BufferMultiplesLineas: str
    LlamadaActual: str
    # Write-only: a configuration, or None to unbind; anything else raises error 13.
    Conmutador: Optional[clsCfgConmut]
    @property
    def TipoLlamadaDetectada(self) -> int: ...
    @property
    def Atributo(self) -> int: ...
    @property
    def Dia(self) -> int: ...
    @property
    def Mes(self) -> int: ...
    @property
    def Anio(self) -> int: ...
    @property
    def Hora(self) -> int: ...
    @property
    def Duracion(self) -> int: ...
    @property
    def Ring(self) -> int: ...
    @property
    def Marcacion(self) -> str: ...
    @property
    def Extension(self) -> str: ...
    @property
    def Troncal(self) -> str: ...
    @property
    def ExtensionReceptor(self) -> str: ...
    @property
    def TroncalReceptor(self) -> str: ...
    @property
    def CodigoCuenta(self) -> str: ...
    def __init__(self) -> None: ...
    def HayLlamada(self) -> bool: ...
    def HayBufferMultiplesLineas(self) -> bool: ...
    def HayConstanteLlamada(self, emParamCte: int) -> bool: ...
    def BuscaLinea(self, cadVal: str) -> int: ...

class Translation(Iterator[Call]):
    counts: dict[str, int]
    def __next__(self) -> Call: ...
    def write(self, data: Union[str, bytes, bytearray]) -> None: ...
    def finish(self) -> None: ...

def translate(
    # str and os.PathLike name a record file, as open() takes them; record text
    # held in a str goes through io.StringIO.
    lines: Union[None, str, bytes, bytearray, os.PathLike[str], Iterable[Union[str, bytes, bytearray]]],
    config: Union[clsCfgConmut, _Path],
    extensions: Optional[_Path] = None,
    *,
    encoding: Optional[str] = None,
    year: Optional[int] = None,
    errors: Optional[_Path] = None,
) -> Translation: ...
def read_calls(
    source: Union[bytes, bytearray, _Path, BinaryIO, TextIO],
    config: Union[clsCfgConmut, _Path],
    extensions: Optional[_Path] = None,
    *,
    encoding: Optional[str] = None,
    year: Optional[int] = None,
    errors: Optional[_Path] = None,
) -> pandas.DataFrame: ...

# Generated from scripts/enums/enums.txt by scripts/enums/generate.py.
class emVersionConfiguracion(IntEnum):
    emNoVersion = 0
    emVersionActual = 1
    emVersion2_0 = 2
    emVersion3_0 = 3

class emCasos(IntEnum):
    emNoCaso = 0
    emCasoEstandar = 1
    emCasoSamsungNX_820 = 2
    emCasoNortelMeridian01 = 3
    emCasoNortelNorstar0x32SMDR6 = 4
    emCasoEstandarRestaFechasDuracion = 5
    emCasoEstandarDecimasMinuto = 6
    emCasoEstandarConSalienteDefecto = 7
    emCasoEstandarRestaFechasDuracionConSalienteDefecto = 8
    emCasoEstandarDecimasMinutoConSalienteDefecto = 9
    emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100 = 10
    emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100ConSalienteDefecto = 11
    emCasoAD_TES = 12

class emTipoDato(IntEnum):
    emValorNoDefinido = 0
    emValorNumerico = 1
    emValorConstante = 2
    emValorCadena = 3

class emParamDato(IntEnum):
    emNoParamDato = 0
    emPrimerParamDato = 1
    emParamFechaDia = 2
    emParamFechaMes = 3
    emParamFechaAnio = 4
    emParamFechaHoras = 5
    emParamFechaMinutos = 6
    emParamFechaSegundos = 7
    emParamDuracionDia = 8
    emParamDuracionMes = 9
    emParamDuracionAnio = 10
    emParamDuracionHoras = 11
    emParamDuracionMinutos = 12
    emParamDuracionSegundos = 13
    emParamRingHoras = 14
    emParamRingMinutos = 15
    emParamRingSegundos = 16
    emParamCodigoCuenta = 17
    emParamTelefonoEntrante = 18
    emParamTelefonoSaliente = 19
    emParamTelefonoInterExtension = 20
    emParamTelefonoInterTroncal = 21
    emParamTelefonoEntranteInicioTransferida = 22
    emParamTelefonoEntranteFinTransferida = 23
    emParamTelefonoSalienteInicioTransferida = 24
    emParamTelefonoSalienteFinTransferida = 25
    emParamTelefonoInterExtensionInicioTransferida = 26
    emParamTelefonoInterExtensionFinTransferida = 27
    emParamTelefonoInterTroncalInicioTransferida = 28
    emParamTelefonoInterTroncalFinTransferida = 29
    emParamTroncalEntrante = 30
    emParamExtensionEntrante = 31
    emParamTroncalSaliente = 32
    emParamExtensionSaliente = 33
    emParamExtension1InterExtension = 34
    emParamExtension2InterExtension = 35
    emParamTroncal1InterTroncal = 36
    emParamTroncal2InterTroncal = 37
    emParamTroncalEntranteInicioTransferida = 38
    emParamExtensionEntranteInicioTransferida = 39
    emParamTroncalEntranteFinTransferida = 40
    emParamExtensionEntranteFinTransferida = 41
    emParamTroncalSalienteInicioTransferida = 42
    emParamExtensionSalienteInicioTransferida = 43
    emParamTroncalSalienteFinTransferida = 44
    emParamExtensionSalienteFinTransferida = 45
    emParamExtension1InterExtensionInicioTransferida = 46
    emParamExtension2InterExtensionInicioTransferida = 47
    emParamExtension1InterExtensionFinTransferida = 48
    emParamExtension2InterExtensionFinTransferida = 49
    emParamTroncal1InterTroncalInicioTransferida = 50
    emParamTroncal2InterTroncalInicioTransferida = 51
    emParamTroncal1InterTroncalFinTransferida = 52
    emParamTroncal2InterTroncalFinTransferida = 53
    emParamTelefonoEntranteEnTransferencia = 54
    emParamTelefonoSalienteEnTransferencia = 55
    emParamTelefonoInterExtensionEnTransferencia = 56
    emParamTelefonoInterTroncalEnTransferencia = 57
    emParamTroncalEntranteEnTransferencia = 58
    emParamExtensionEntranteEnTransferencia = 59
    emParamTroncalSalienteEnTransferencia = 60
    emParamExtensionSalienteEnTransferencia = 61
    emParamExtension1InterExtensionEnTransferencia = 62
    emParamExtension2InterExtensionEnTransferencia = 63
    emParamTroncal1InterTroncalEnTransferencia = 64
    emParamTroncal2InterTroncalEnTransferencia = 65
    emParamTroncalCodigoCuenta = 66
    emParamTroncalTransferida = 67
    emParamExtensionTransferida = 68
    emUltimoParamDato = 69

class emParamDatoConstante(IntEnum):
    emNoParamDatoConstante = 0
    emPrimerParamDatoConstante = 1
    emDatoCteIdentificadorHorarioMatutinoFecha = 2
    emDatoCteIdentificadorHorarioMatutinoDuracion = 3
    emDatoCteIdentEntrante = 4
    emDatoCteIdentEntranteAND = 5
    emDatoCteIdentEntranteOR = 6
    emDatoCteIdentSaliente = 7
    emDatoCteIdentSalienteAND = 8
    emDatoCteIdentSalienteOR = 9
    emDatoCteIdentInterExtension = 10
    emDatoCteIdentInterExtensionAND = 11
    emDatoCteIdentInterExtensionOR = 12
    emDatoCteIdentInterTroncal = 13
    emDatoCteIdentInterTroncalAND = 14
    emDatoCteIdentInterTroncalOR = 15
    emDatoCteIdentEntranteInicioTransferida = 16
    emDatoCteIdentEntranteFinTransferida = 17
    emDatoCteIdentSalienteInicioTransferida = 18
    emDatoCteIdentSalienteFinTransferida = 19
    emDatoCteIdentInterExtensionInicioTransferida = 20
    emDatoCteIdentInterExtensionFinTransferida = 21
    emDatoCteIdentInterTroncalInicioTransferida = 22
    emDatoCteIdentInterTroncalFinTransferida = 23
    emDatoCteIdentEntranteEnTransferencia = 24
    emDatoCteIdentSalienteEnTransferencia = 25
    emDatoCteIdentInterExtensionEnTransferencia = 26
    emDatoCteIdentInterTroncalEnTransferencia = 27
    emDatoCteIdentCodigoCuenta = 28
    emDatoCteIdentNoContestada = 29
    emUltimoParamDatoConstante = 30

class emPuertoSerial(IntEnum):
    emNoPuerto = 0
    emPuertoRJ45 = 1
    emPuertoDB9 = 2
    emPuertoDB25 = 3

class emTablaConversionDB9DB25(IntEnum):
    emDB9Pin1 = 8
    emDB9Pin2 = 3
    emDB9Pin3 = 2
    emDB9Pin4 = 20
    emDB9Pin5 = 7
    emDB9Pin6 = 6
    emDB9Pin7 = 4
    emDB9Pin8 = 5
    emDB9Pin9 = 22

class emTipoLlamadaTraductor(IntEnum):
    emTradNoIdentificada = 0
    emTradEntrante = 1
    emTradSaliente = 2
    emTradInterExtension = 3
    emTradInterTroncal = 4
    emTradCodigoCuenta = 5
    emTradTransferida = 6

class emAtributoTraductor(IntEnum):
    emATRNoAtributo = 0
    emATRIniTR = 1
    emATREnTR = 2
    emATRFinTR = 3
    emATRNoContestada = 4

class emErroresConfig(IntEnum):
    emNoErrorConfig = 0
    emErrorConfigNoHay = 1500
    emErrorNoHayArchivo = 1501
    emErrorConfigDatosIncompletos = 1502
    emErrorConfigExportar = 1503
    emErrorConfigImportar = 1504
    emErrorConfigAbrir = 1505
    emErrorDesconocido = 1506

emNoVersion: emVersionConfiguracion
emVersionActual: emVersionConfiguracion
emVersion2_0: emVersionConfiguracion
emVersion3_0: emVersionConfiguracion
emNoCaso: emCasos
emCasoEstandar: emCasos
emCasoSamsungNX_820: emCasos
emCasoNortelMeridian01: emCasos
emCasoNortelNorstar0x32SMDR6: emCasos
emCasoEstandarRestaFechasDuracion: emCasos
emCasoEstandarDecimasMinuto: emCasos
emCasoEstandarConSalienteDefecto: emCasos
emCasoEstandarRestaFechasDuracionConSalienteDefecto: emCasos
emCasoEstandarDecimasMinutoConSalienteDefecto: emCasos
emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100: emCasos
emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100ConSalienteDefecto: emCasos
emCasoAD_TES: emCasos
emValorNoDefinido: emTipoDato
emValorNumerico: emTipoDato
emValorConstante: emTipoDato
emValorCadena: emTipoDato
emNoParamDato: emParamDato
emPrimerParamDato: emParamDato
emParamFechaDia: emParamDato
emParamFechaMes: emParamDato
emParamFechaAnio: emParamDato
emParamFechaHoras: emParamDato
emParamFechaMinutos: emParamDato
emParamFechaSegundos: emParamDato
emParamDuracionDia: emParamDato
emParamDuracionMes: emParamDato
emParamDuracionAnio: emParamDato
emParamDuracionHoras: emParamDato
emParamDuracionMinutos: emParamDato
emParamDuracionSegundos: emParamDato
emParamRingHoras: emParamDato
emParamRingMinutos: emParamDato
emParamRingSegundos: emParamDato
emParamCodigoCuenta: emParamDato
emParamTelefonoEntrante: emParamDato
emParamTelefonoSaliente: emParamDato
emParamTelefonoInterExtension: emParamDato
emParamTelefonoInterTroncal: emParamDato
emParamTelefonoEntranteInicioTransferida: emParamDato
emParamTelefonoEntranteFinTransferida: emParamDato
emParamTelefonoSalienteInicioTransferida: emParamDato
emParamTelefonoSalienteFinTransferida: emParamDato
emParamTelefonoInterExtensionInicioTransferida: emParamDato
emParamTelefonoInterExtensionFinTransferida: emParamDato
emParamTelefonoInterTroncalInicioTransferida: emParamDato
emParamTelefonoInterTroncalFinTransferida: emParamDato
emParamTroncalEntrante: emParamDato
emParamExtensionEntrante: emParamDato
emParamTroncalSaliente: emParamDato
emParamExtensionSaliente: emParamDato
emParamExtension1InterExtension: emParamDato
emParamExtension2InterExtension: emParamDato
emParamTroncal1InterTroncal: emParamDato
emParamTroncal2InterTroncal: emParamDato
emParamTroncalEntranteInicioTransferida: emParamDato
emParamExtensionEntranteInicioTransferida: emParamDato
emParamTroncalEntranteFinTransferida: emParamDato
emParamExtensionEntranteFinTransferida: emParamDato
emParamTroncalSalienteInicioTransferida: emParamDato
emParamExtensionSalienteInicioTransferida: emParamDato
emParamTroncalSalienteFinTransferida: emParamDato
emParamExtensionSalienteFinTransferida: emParamDato
emParamExtension1InterExtensionInicioTransferida: emParamDato
emParamExtension2InterExtensionInicioTransferida: emParamDato
emParamExtension1InterExtensionFinTransferida: emParamDato
emParamExtension2InterExtensionFinTransferida: emParamDato
emParamTroncal1InterTroncalInicioTransferida: emParamDato
emParamTroncal2InterTroncalInicioTransferida: emParamDato
emParamTroncal1InterTroncalFinTransferida: emParamDato
emParamTroncal2InterTroncalFinTransferida: emParamDato
emParamTelefonoEntranteEnTransferencia: emParamDato
emParamTelefonoSalienteEnTransferencia: emParamDato
emParamTelefonoInterExtensionEnTransferencia: emParamDato
emParamTelefonoInterTroncalEnTransferencia: emParamDato
emParamTroncalEntranteEnTransferencia: emParamDato
emParamExtensionEntranteEnTransferencia: emParamDato
emParamTroncalSalienteEnTransferencia: emParamDato
emParamExtensionSalienteEnTransferencia: emParamDato
emParamExtension1InterExtensionEnTransferencia: emParamDato
emParamExtension2InterExtensionEnTransferencia: emParamDato
emParamTroncal1InterTroncalEnTransferencia: emParamDato
emParamTroncal2InterTroncalEnTransferencia: emParamDato
emParamTroncalCodigoCuenta: emParamDato
emParamTroncalTransferida: emParamDato
emParamExtensionTransferida: emParamDato
emUltimoParamDato: emParamDato
emNoParamDatoConstante: emParamDatoConstante
emPrimerParamDatoConstante: emParamDatoConstante
emDatoCteIdentificadorHorarioMatutinoFecha: emParamDatoConstante
emDatoCteIdentificadorHorarioMatutinoDuracion: emParamDatoConstante
emDatoCteIdentEntrante: emParamDatoConstante
emDatoCteIdentEntranteAND: emParamDatoConstante
emDatoCteIdentEntranteOR: emParamDatoConstante
emDatoCteIdentSaliente: emParamDatoConstante
emDatoCteIdentSalienteAND: emParamDatoConstante
emDatoCteIdentSalienteOR: emParamDatoConstante
emDatoCteIdentInterExtension: emParamDatoConstante
emDatoCteIdentInterExtensionAND: emParamDatoConstante
emDatoCteIdentInterExtensionOR: emParamDatoConstante
emDatoCteIdentInterTroncal: emParamDatoConstante
emDatoCteIdentInterTroncalAND: emParamDatoConstante
emDatoCteIdentInterTroncalOR: emParamDatoConstante
emDatoCteIdentEntranteInicioTransferida: emParamDatoConstante
emDatoCteIdentEntranteFinTransferida: emParamDatoConstante
emDatoCteIdentSalienteInicioTransferida: emParamDatoConstante
emDatoCteIdentSalienteFinTransferida: emParamDatoConstante
emDatoCteIdentInterExtensionInicioTransferida: emParamDatoConstante
emDatoCteIdentInterExtensionFinTransferida: emParamDatoConstante
emDatoCteIdentInterTroncalInicioTransferida: emParamDatoConstante
emDatoCteIdentInterTroncalFinTransferida: emParamDatoConstante
emDatoCteIdentEntranteEnTransferencia: emParamDatoConstante
emDatoCteIdentSalienteEnTransferencia: emParamDatoConstante
emDatoCteIdentInterExtensionEnTransferencia: emParamDatoConstante
emDatoCteIdentInterTroncalEnTransferencia: emParamDatoConstante
emDatoCteIdentCodigoCuenta: emParamDatoConstante
emDatoCteIdentNoContestada: emParamDatoConstante
emUltimoParamDatoConstante: emParamDatoConstante
emNoPuerto: emPuertoSerial
emPuertoRJ45: emPuertoSerial
emPuertoDB9: emPuertoSerial
emPuertoDB25: emPuertoSerial
emDB9Pin1: emTablaConversionDB9DB25
emDB9Pin2: emTablaConversionDB9DB25
emDB9Pin3: emTablaConversionDB9DB25
emDB9Pin4: emTablaConversionDB9DB25
emDB9Pin5: emTablaConversionDB9DB25
emDB9Pin6: emTablaConversionDB9DB25
emDB9Pin7: emTablaConversionDB9DB25
emDB9Pin8: emTablaConversionDB9DB25
emDB9Pin9: emTablaConversionDB9DB25
emTradNoIdentificada: emTipoLlamadaTraductor
emTradEntrante: emTipoLlamadaTraductor
emTradSaliente: emTipoLlamadaTraductor
emTradInterExtension: emTipoLlamadaTraductor
emTradInterTroncal: emTipoLlamadaTraductor
emTradCodigoCuenta: emTipoLlamadaTraductor
emTradTransferida: emTipoLlamadaTraductor
emATRNoAtributo: emAtributoTraductor
emATRIniTR: emAtributoTraductor
emATREnTR: emAtributoTraductor
emATRFinTR: emAtributoTraductor
emATRNoContestada: emAtributoTraductor
emNoErrorConfig: emErroresConfig
emErrorConfigNoHay: emErroresConfig
emErrorNoHayArchivo: emErroresConfig
emErrorConfigDatosIncompletos: emErroresConfig
emErrorConfigExportar: emErroresConfig
emErrorConfigImportar: emErroresConfig
emErrorConfigAbrir: emErroresConfig
emErrorDesconocido: emErroresConfig
